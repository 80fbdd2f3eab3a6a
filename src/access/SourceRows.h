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

    /// Throws GenException when the source fails, or with kReadingStopped when the sink asks to stop. After that, and
    /// after the last row, it is false and the source is closed.
    bool next();
    /// Whether next() reached the end of the source without a failure or a stop.
    [[nodiscard]] bool isComplete() const { return m_isComplete; }
    [[nodiscard]] KvbString warning() const;

    [[nodiscard]] int columnCount() const { return static_cast<int>(m_names.size()); }
    /// For a column that there is not: a null text, kvbType::Text.
    [[nodiscard]] KvbString name(int column) const;
    [[nodiscard]] kvbType type(int column) const;
    /// Null too when there is no current row.
    [[nodiscard]] KvbString value(int column) const;

  private:
    /// False at the end of the source. Throws as next() does.
    bool readBlock();
    void close();
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
