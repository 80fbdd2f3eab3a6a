#include "expression/RowEvaluator.h"

namespace tavix::expression {

RowEvaluator::RowEvaluator(Program program) : m_program(std::move(program)), m_interpreter(m_scratch) {}

Value RowEvaluator::evaluate(std::span<const Value> row) {
    m_scratch.clear();
    const Value value = m_interpreter.evaluate(m_program.tree(), row);
    m_failure = m_scratch.takeFailure();
    return hasFailed() ? Value{} : value;
}

} // namespace tavix::expression
