#pragma once

#include "blocks/Block.h"
#include "blocks/Vector.h"
#include "expression/Program.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>

namespace tavix::expression {

/// The values of an expression for consecutive rows of a block.
struct ValuePiece {
    std::uint32_t rows = 0;
    const Vector& values;                 ///< by row within the piece
    std::span<const std::uint8_t> failed; ///< nonzero for a row that failed; empty without failures

    [[nodiscard]] bool isFailed(std::uint32_t row) const { return !failed.empty() && failed[row] != 0; }
};

/// Computes the values of an expression for all rows of a block. For one thread.
class BlockValues {
  public:
    explicit BlockValues(Program program);
    BlockValues(const BlockValues&) = delete;
    BlockValues& operator=(const BlockValues&) = delete;
    ~BlockValues();

    /// Passes the values to `take`, usually at once, or in several pieces in row order when the rows make long texts. A
    /// piece is valid during the call. `goOn` is asked between pieces; false stops the evaluation.
    void evaluate(const Block& block, const std::function<void(const ValuePiece&)>& take, const GoOn& goOn = {});

    // Of the last block.
    [[nodiscard]] const BlockFailures& failures() const;

  private:
    struct State;
    Program m_program;
    std::unique_ptr<State> m_state;
};

} // namespace tavix::expression
