#pragma once

#include "blocks/Block.h"
#include "blocks/Frame.h"
#include "expression/Node.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace tavix::expression {

/// Adds the failures of a piece to those of the pieces before it.
void addFailures(BlockFailures& failures, const Frame& frame, std::uint32_t firstRowOfPiece);

/// Evaluates a block as a whole, or in pieces when its rows make long texts or the expression has many operators. This
/// bounds the memory and makes failures independent of neighbouring rows: a piece that made too much is evaluated again
/// in smaller ones, down to single rows, and only a single row can fail for that.
class BlockPieces {
  public:
    explicit BlockPieces(const Node& tree);

    /// Calls `evaluate` for each piece in the frame and `accept`, with the number of its first row, once the results
    /// are valid. False when `goOn` (which may be empty) stopped it.
    template <typename Evaluate, typename Accept>
    bool walk(Frame& frame, const Block& block, const GoOn& goOn, Evaluate evaluate, Accept accept) {
        std::size_t size = m_mostRows;
        for (std::size_t first = 0; first < block.rows;) {
            if (first > 0 && goOn && !goOn())
                return false;
            size = std::min(size, block.rows - first);
            frame.begin(size == block.rows ? block : slice(block, first, size),
                        size == 1 ? kMostTextsOfRow : kMostTextsOfPiece);
            evaluate();
            if (frame.scratch().isFull() && size > 1) {
                size /= 2;
                continue;
            }
            accept(static_cast<std::uint32_t>(first));
            first += size;
            size = std::min(size * 2, m_mostRows);
        }
        return true;
    }

  private:
    static constexpr std::size_t kMostTextsOfPiece = std::size_t{32} << 20;
    static_assert(kMostTextsOfPiece <= kMostTextsOfRow);

    [[nodiscard]] const Block& slice(const Block& block, std::size_t first, std::size_t rows);

    std::size_t m_mostRows;
    Block m_slice;
    std::vector<BlockColumn> m_columns;
    std::vector<std::vector<std::uint32_t>> m_ends; ///< for each column of the slice
};

} // namespace tavix::expression
