#include "expression/RowEvaluator.h"

namespace tavix::expression {

RowEvaluator::RowEvaluator(Program program) : m_program(std::move(program)), m_interpreter(m_scratch) {}

Verdict RowEvaluator::judge(std::span<const Value> row) {
    m_scratch.clear();
    const bool passes = m_interpreter.is(true, m_program.tree(), row);
    m_failure = m_scratch.takeFailure();
    if (hasFailed())
        return Verdict::Error;
    return passes ? Verdict::Passes : Verdict::Fails;
}

Value RowEvaluator::evaluate(std::span<const Value> row) {
    m_scratch.clear();
    const Value value = m_interpreter.evaluate(m_program.tree(), row);
    m_failure = m_scratch.takeFailure();
    return hasFailed() ? Value{} : value;
}

} // namespace tavix::expression
