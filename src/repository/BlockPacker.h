#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "repository/PackedBlock.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace tavix::repository {

/// Packs rows one by one, in the order of the distribution. The content of a block depends on the rows alone.
class BlockPacker {
  public:
    /// Whether a text of this length fits the current block; if not, finish() must come first.
    [[nodiscard]] bool hasRoomFor(std::size_t length) const {
        return m_rows < kRowsPerBlock && (m_rows == 0 || m_textSize + length <= kTextPerBlock);
    }
    [[nodiscard]] bool isEmpty() const { return m_rows == 0; }
    /// Copies the row. Fails for a value longer than kLongestValue and for a second null.
    [[nodiscard]] Status add(const ValueCount& row);
    /// Packs the rows, at least one, and begins the next block. The payload is valid until the next call.
    [[nodiscard]] PackedBlock finish();

  private:
    void growRows();
    void growText(std::size_t size);
    std::size_t findShared();
    void writeRests(char* target) const;
    void beginNext();

    // Of each list, the first m_rows belong to this block.
    std::size_t m_rows = 0;
    std::vector<std::uint64_t> m_counts;
    std::vector<std::uint32_t> m_lengths;
    std::vector<std::uint8_t> m_shared; ///< length of the prefix shared with the text before; set by findShared()
    std::unique_ptr<char[]> m_text;     ///< whole texts, concatenated; readable bytes follow
    std::size_t m_textSize = 0;
    std::size_t m_textRoom = 0;
    std::int64_t m_firstRow = 0;
    std::uint32_t m_nullRow = 0;
    bool m_hasNull = false; ///< in this block
    bool m_sawNull = false;
    std::vector<std::byte> m_payload;
};

} // namespace tavix::repository
