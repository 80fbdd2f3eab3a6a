#pragma once

#include "access/PrViewerDrillCursor.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

struct DrillColumn {
    std::string name;
    kvbType type = kvbType::Text;
};

/// Whether output writes the type's values bare, and lists align them as numbers.
[[nodiscard]] inline bool isNumeric(kvbType type) {
    return type == kvbType::Integer || type == kvbType::Real;
}

/// Rows of texts, kept together: beside its bytes a cell takes one byte (three from 127 bytes on), and a row at most
/// eight.
class DrillRows {
  public:
    explicit DrillRows(std::vector<DrillColumn> columns = {});

    [[nodiscard]] const std::vector<DrillColumn>& columns() const { return m_columns; }
    /// At most 2^32 - 1.
    [[nodiscard]] std::uint32_t count() const { return m_count; }

    /// Appends a cell to the row that is being made; null is kept as such.
    void add(const KvbString& value);
    /// Ends the row; as many cells as there are columns have been added.
    void endRow();
    /// Takes back the cells that were added since the last row ended.
    void dropOpenRow();
    /// Gives back the room that was kept for further rows; more may be added nevertheless.
    void finish();

    struct Cell {
        std::string_view text; ///< "" when null; valid as long as the rows
        bool isNull = false;
    };
    [[nodiscard]] Cell cell(int column, std::uint32_t row) const;

    /// Fills `texts` with those of the rows from `first` on: faster than cell by cell.
    void texts(int column, std::uint32_t first, std::span<std::string_view> texts) const;

    /// What the rows take up in memory.
    [[nodiscard]] std::size_t bytes() const;

  private:
    struct Place {
        std::uint32_t chunk;
        std::uint32_t offset;
    };
    void beginRow();
    void shrink();

    std::vector<DrillColumn> m_columns;
    std::uint32_t m_stride; ///< narrow rows share a place; no chunk ends within it
    std::uint32_t m_count = 0;
    bool m_inRow = false;
    std::size_t m_rowBegin = 0; ///< of the row that is being made, in the last chunk
    std::vector<std::vector<char>> m_chunks;
    std::vector<Place> m_places; ///< of every m_stride-th row
};

} // namespace tavix
