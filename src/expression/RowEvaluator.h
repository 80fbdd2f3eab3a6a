#pragma once

#include "expression/Interpreter.h"
#include "expression/Program.h"
#include "expression/Scratch.h"

#include <cstdint>
#include <span>
#include <string>

namespace tavix::expression {

enum class Verdict : std::uint8_t {
    Passes, ///< the condition is true
    Fails,  ///< it is false or null
    Error,  ///< it could not be evaluated
};

/// Evaluates a program for one row of values at a time. For one thread.
class RowEvaluator {
  public:
    explicit RowEvaluator(Program program);
    RowEvaluator(const RowEvaluator&) = delete;
    RowEvaluator& operator=(const RowEvaluator&) = delete;

    /// `row` has a value for each field of the program; their types need not be the declared ones, so the cells of a
    /// text file may all be texts. For programs compiled as conditions.
    [[nodiscard]] Verdict judge(std::span<const Value> row);

    /// The value; a text lives until the next call or as long as the row does. Null also on failure: see hasFailed().
    [[nodiscard]] Value evaluate(std::span<const Value> row);

    /// Of the last call.
    [[nodiscard]] bool hasFailed() const { return !m_failure.empty(); }
    [[nodiscard]] const std::string& failure() const { return m_failure; }

  private:
    Program m_program;
    Scratch m_scratch;
    Interpreter m_interpreter;
    std::string m_failure;
};

} // namespace tavix::expression
