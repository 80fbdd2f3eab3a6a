#include "expression/BlockValues.h"

#include "expression/Frame.h"
#include "expression/Operand.h"

namespace tavix::expression {

struct BlockValues::State {
    explicit State(const Node& node) : operand(makeOperand(node)) {}

    Frame frame;
    RowSet rows;
    OperandPtr operand;
};

BlockValues::BlockValues(Program program)
    : m_program(std::move(program)), m_state(std::make_unique<State>(m_program.tree())) {}

BlockValues::~BlockValues() = default;

const Vector& BlockValues::evaluate(const Block& block) {
    m_state->frame.begin(block);
    m_state->rows.fill(block.rows);
    return m_state->operand->evaluate(m_state->frame, m_state->rows);
}

bool BlockValues::isFailed(std::uint32_t row) const {
    return m_state->frame.hasFailures() && m_state->frame.isFailed(row);
}

std::size_t BlockValues::failures() const {
    return m_state->frame.failures();
}

std::uint32_t BlockValues::firstFailedRow() const {
    return m_state->frame.firstFailedRow();
}

const std::string& BlockValues::firstFailure() const {
    return m_state->frame.firstFailure();
}

} // namespace tavix::expression
