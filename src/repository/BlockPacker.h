#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "repository/PackedBlock.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tavix::repository {

/// Packs rows that come one by one, in the order in which they are shown. What a block holds depends on the rows alone.
class BlockPacker {
  public:
    /// Whether a text of this length goes into the block that is being filled; when not, finish() has to come first.
    [[nodiscard]] bool hasRoomFor(std::size_t length) const {
        return m_rows < kRowsPerBlock && (m_rows == 0 || m_textSize + length <= kTextPerBlock);
    }
    [[nodiscard]] bool isEmpty() const { return m_rows == 0; }
    /// Copies the row. Fails on a value beyond kLongestValue and on a second null.
    [[nodiscard]] Status add(const ValueCount& row);
    /// Packs the rows, of which there must be one, and begins the next block. The payload lives until the next call.
    [[nodiscard]] PackedBlock finish();

  private:
    void growRows();
    void growText(std::size_t size);
    std::size_t findShared();
    void writeRests(char* target) const;
    void beginNext();

    // Of each list the first m_rows are of this block.
    std::size_t m_rows = 0;
    std::vector<std::uint64_t> m_counts;
    std::vector<std::uint32_t> m_lengths;
    std::vector<std::uint8_t> m_shared; ///< with the text before; made by findShared()
    std::unique_ptr<char[]> m_text;     ///< whole texts, one after the other; room to read behind them
    std::size_t m_textSize = 0;
    std::size_t m_textRoom = 0;
    std::int64_t m_firstRow = 0;
    std::uint32_t m_nullRow = 0;
    bool m_hasNull = false; ///< in this block
    bool m_sawNull = false;
    std::vector<std::byte> m_payload;
};

} // namespace tavix::repository
