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

/// Whether output writes values of the type without quotes, and lists align them right.
[[nodiscard]] inline bool isNumeric(kvbType type) {
    return type == kvbType::Integer || type == kvbType::Real;
}

/// Rows of texts in compact form. Beyond its bytes a cell takes one byte (two or more from 127 bytes on), and a row at
/// most eight.
class DrillRows {
  public:
    explicit DrillRows(std::vector<DrillColumn> columns = {});

    [[nodiscard]] const std::vector<DrillColumn>& columns() const { return m_columns; }
    /// At most 2^32 - 1.
    [[nodiscard]] std::uint32_t count() const { return m_count; }

    /// Appends a cell to the open row; null stays null.
    void add(const KvbString& value);
    /// Completes the open row, to which one cell per column must have been added.
    void endRow();
    /// Drops the cells of the open row.
    void dropOpenRow();
    /// Frees the memory reserved for further rows. More rows may still be added.
    void finish();

    struct Cell {
        std::string_view text; ///< "" when null; valid as long as the DrillRows
        bool isNull = false;
    };
    [[nodiscard]] Cell cell(int column, std::uint32_t row) const;

    /// Fills `texts` with the column's texts of the rows from `first` on; faster than cell by cell.
    void texts(int column, std::uint32_t first, std::span<std::string_view> texts) const;

    /// The memory that the rows take.
    [[nodiscard]] std::size_t bytes() const;

  private:
    struct Place {
        std::uint32_t chunk;
        std::uint32_t offset;
    };
    void beginRow();
    void shrink();
    /// The beginning of the latest row with an offset that is not after this one.
    [[nodiscard]] const char* placeBefore(std::uint32_t row) const;

    std::vector<DrillColumn> m_columns;
    std::uint32_t m_stride; ///< rows per offset; a chunk never ends between them
    std::uint32_t m_count = 0;
    bool m_inRow = false;
    std::size_t m_rowBegin = 0; ///< of the open row, in the last chunk
    std::vector<std::vector<char>> m_chunks;
    std::vector<Place> m_places; ///< of every m_stride-th row
};

} // namespace tavix
