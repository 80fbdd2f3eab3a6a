#pragma once

#include "expression/Interpreter.h"
#include "expression/Program.h"
#include "expression/Scratch.h"

#include <span>
#include <string>

namespace tavix::expression {

/// Evaluates a program row by row. For one thread.
class RowEvaluator {
  public:
    explicit RowEvaluator(Program program);
    RowEvaluator(const RowEvaluator&) = delete;
    RowEvaluator& operator=(const RowEvaluator&) = delete;

    /// `row`: a value for each field of the program, not necessarily of the declared type, so that the cells of a text
    /// file can all be texts. A text in the result lives until the next call and as long as the row. Null also on
    /// failure: see hasFailed().
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
