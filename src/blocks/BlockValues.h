#pragma once

#include "blocks/Block.h"
#include "blocks/Vector.h"
#include "expression/Program.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

namespace tavix::expression {

/// The values of an expression in rows of a block that follow each other.
struct ValuePiece {
    std::uint32_t rows = 0;
    const Vector& values;                 ///< by the row's number within the piece
    std::span<const std::uint8_t> failed; ///< not 0 for a row whose value is of no use; empty when there is none

    [[nodiscard]] bool isFailed(std::uint32_t row) const { return !failed.empty() && failed[row] != 0; }
};

/// Computes the values of an expression for all rows of a block. For one thread.
class BlockValues {
  public:
    explicit BlockValues(Program program);
    BlockValues(const BlockValues&) = delete;
    BlockValues& operator=(const BlockValues&) = delete;
    ~BlockValues();

    /// Gives the values to `take`, mostly all at once, or in several pieces in the order of the rows when they make
    /// long texts. A piece is valid for the call. `goOn` is asked between pieces; false ends the evaluation.
    void evaluate(const Block& block, const std::function<void(const ValuePiece&)>& take, const GoOn& goOn = {});

    // Of the last block.
    [[nodiscard]] std::size_t failures() const;
    /// The first row that failed, and why; only to be asked when one did.
    [[nodiscard]] std::uint32_t firstFailedRow() const;
    [[nodiscard]] const std::string& firstFailure() const;

  private:
    struct State;
    Program m_program;
    std::unique_ptr<State> m_state;
};

} // namespace tavix::expression
