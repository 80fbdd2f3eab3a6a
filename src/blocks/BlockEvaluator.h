#pragma once

#include "blocks/Block.h"
#include "expression/Program.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace tavix::expression {

/// Finds the rows of a block that meet a condition, by operators that narrow the whole block. For one thread.
class BlockEvaluator {
  public:
    /// The program has to be compiled as a condition.
    explicit BlockEvaluator(Program program);
    BlockEvaluator(const BlockEvaluator&) = delete;
    BlockEvaluator& operator=(const BlockEvaluator&) = delete;
    ~BlockEvaluator();

    /// The rows for which the condition is true, ascending; valid until the next call. Rows that could not be
    /// evaluated are not among them; they are counted below.
    /// `goOn` is asked within a block only when its rows make long texts; when it answers false, the rows so far are
    /// given and wasStopped() is true.
    [[nodiscard]] std::span<const std::uint32_t> passing(const Block& block, const GoOn& goOn = {});

    // Of the last block.
    [[nodiscard]] bool wasStopped() const;
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
