#pragma once

#include "expression/Block.h"
#include "expression/Program.h"
#include "expression/Vector.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace tavix::expression {

/// Computes the values of an expression for all rows of a block. For one thread.
class BlockValues {
  public:
    explicit BlockValues(Program program);
    BlockValues(const BlockValues&) = delete;
    BlockValues& operator=(const BlockValues&) = delete;
    ~BlockValues();

    /// Valid until the next call and as long as the block is. The value of a row that failed is of no use.
    [[nodiscard]] const Vector& evaluate(const Block& block);

    // Of the last block.
    [[nodiscard]] bool isFailed(std::uint32_t row) const;
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
