#pragma once

#include "blocks/Block.h"
#include "blocks/Frame.h"
#include "expression/Node.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tavix::expression {

/// The rows of a block that failed, gathered over its pieces.
struct BlockFailures {
    std::size_t count = 0;
    std::uint32_t firstRow = 0;
    std::string first; ///< why the first row failed

    /// Takes those of a piece, which follows those that were taken before.
    void add(const Frame& frame, std::uint32_t firstOfPiece) {
        if (count == 0 && frame.hasFailures()) {
            firstRow = firstOfPiece + frame.firstFailedRow();
            first = frame.firstFailure();
        }
        count += frame.failures();
    }
};

/// Evaluates a block as a whole, or in pieces where its rows make long texts or the expression has many operators. So
/// memory stays bounded, and whether a row fails does not depend on the rows beside it: a piece that made too much is
/// evaluated again in smaller ones, in the end row by row, and only a row by itself can fail for it.
class BlockPieces {
  public:
    explicit BlockPieces(const Node& tree);

    /// Calls `evaluate` after the frame was given a piece, and `accept` with the number of its first row when the
    /// results hold. False when `goOn` (which may be empty) ended it.
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
    std::vector<std::vector<std::uint32_t>> m_ends; ///< of each column of the slice
};

} // namespace tavix::expression
