#pragma once

#include "expression/Interpreter.h"
#include "expression/Program.h"
#include "expression/Scratch.h"

#include <cstdint>
#include <span>
#include <string>
#include <utility>

namespace tavix::expression {

enum class Verdict : std::uint8_t {
    Passes, ///< the condition is true
    Fails,  ///< it is false or null
    Error,  ///< it could not be evaluated
};

/// Evaluates a condition row by row, as the reference for its evaluation over blocks.
class RowJudge {
  public:
    explicit RowJudge(Program program) : m_program(std::move(program)) {}

    [[nodiscard]] Verdict judge(std::span<const Value> row) {
        m_scratch.clear();
        const bool passes = Interpreter(m_scratch).is(true, m_program.tree(), row);
        m_failure = m_scratch.takeFailure();
        return !m_failure.empty() ? Verdict::Error : passes ? Verdict::Passes : Verdict::Fails;
    }
    /// Of the last row.
    [[nodiscard]] const std::string& failure() const { return m_failure; }

  private:
    Program m_program;
    Scratch m_scratch;
    std::string m_failure;
};

} // namespace tavix::expression
