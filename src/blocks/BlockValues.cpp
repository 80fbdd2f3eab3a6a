#include "blocks/BlockValues.h"

#include "blocks/BlockPieces.h"
#include "blocks/Frame.h"
#include "blocks/Operand.h"

namespace tavix::expression {

struct BlockValues::State {
    explicit State(const Node& node) : pieces(node), operand(makeOperand(node)) {}

    Frame frame;
    BlockPieces pieces;
    RowSet rows;
    OperandPtr operand;
    BlockFailures failures;
};

BlockValues::BlockValues(Program program)
    : m_program(std::move(program)), m_state(std::make_unique<State>(m_program.tree())) {}

BlockValues::~BlockValues() = default;

void BlockValues::evaluate(const Block& block, const std::function<void(const ValuePiece&)>& take, const GoOn& goOn) {
    State& state = *m_state;
    state.failures = {};
    const Vector* values = nullptr;
    const auto evaluate = [&] {
        state.rows.fill(state.frame.rows());
        values = &state.operand->evaluate(state.frame, state.rows);
    };
    const auto accept = [&](std::uint32_t first) {
        addFailures(state.failures, state.frame, first);
        take({static_cast<std::uint32_t>(state.frame.rows()), *values, state.frame.failed()});
    };
    (void)state.pieces.walk(state.frame, block, goOn, evaluate, accept);
}

const BlockFailures& BlockValues::failures() const {
    return m_state->failures;
}

} // namespace tavix::expression
