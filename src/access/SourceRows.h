#pragma once

#include "access/DrillSource.h"
#include "base/KvbString.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tavix {

class PrViewDisplayMessage;

/// The wanted rows of a source, read as they are asked for.
class SourceRows {
  public:
    /// `sink` may be null; it is told between two pieces of the source and must outlive the reading.
    SourceRows(DrillSource source, PrViewDisplayMessage* sink);

    /// Throws GenException when the source fails. Once false it stays so, and the source is closed.
    bool next();
    /// next() came to the end of the source, and did not stop because of a failure or the sink's wish.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }
    [[nodiscard]] KvbString warning() const;

    [[nodiscard]] int columnCount() const { return static_cast<int>(m_names.size()); }
    /// For a column that there is not: a null text, kvbType::Text.
    [[nodiscard]] KvbString name(int column) const;
    [[nodiscard]] kvbType type(int column) const;
    [[nodiscard]] bool isNull(int column) const { return !cell(column) || cell(column)->isNull; }
    /// Null without a current row.
    [[nodiscard]] KvbString value(int column) const;

  private:
    /// False at the end, or when the sink wants no more.
    bool readBlock();
    /// Null without a current row and outside its columns.
    [[nodiscard]] const source::Cell* cell(int column) const;
    [[nodiscard]] bool has(int column) const { return column >= 0 && column < columnCount(); }

    DrillSource m_source;
    PrViewDisplayMessage* m_sink;
    std::vector<std::string> m_names;
    source::RowBlock m_block;
    std::vector<std::uint32_t> m_rows; ///< of the block, those that are wanted
    std::size_t m_next = 0;            ///< among them
    bool m_isOnRow = false;
    bool m_isComplete = false;
};

} // namespace tavix
