#pragma once

#include "blocks/Block.h"
#include "expression/Program.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

namespace tavix::expression {

/// Finds the rows of a block that meet a condition, by vectorized operators. For one thread.
class BlockEvaluator {
  public:
    /// The program must have been compiled as a condition.
    explicit BlockEvaluator(Program program);
    BlockEvaluator(const BlockEvaluator&) = delete;
    BlockEvaluator& operator=(const BlockEvaluator&) = delete;
    ~BlockEvaluator();

    /// The rows for which the condition is true, in ascending order; valid until the next call. Rows that could not be
    /// evaluated are counted as failures.
    /// `goOn` is asked within a block only when its rows make long texts. When it returns false, the rows found so far
    /// are returned and wasStopped() is true.
    [[nodiscard]] std::span<const std::uint32_t> passing(const Block& block, const GoOn& goOn = {});

    // Of the last block.
    [[nodiscard]] bool wasStopped() const;
    [[nodiscard]] const BlockFailures& failures() const;

  private:
    struct State;
    Program m_program;
    std::unique_ptr<State> m_state;
};

} // namespace tavix::expression
