#include "expression/BlockEvaluator.h"

#include "expression/Frame.h"
#include "expression/Predicate.h"

namespace tavix::expression {

struct BlockEvaluator::State {
    explicit State(const Node& condition) : predicate(makePredicate(condition)) {}

    Frame frame;
    RowSet rows;
    PredicatePtr predicate;
};

BlockEvaluator::BlockEvaluator(Program program)
    : m_program(std::move(program)), m_state(std::make_unique<State>(m_program.tree())) {}

BlockEvaluator::~BlockEvaluator() = default;

std::span<const std::uint32_t> BlockEvaluator::passing(const Block& block) {
    Frame& frame = m_state->frame;
    RowSet& rows = m_state->rows;
    frame.begin(block);
    rows.fill(block.rows);
    m_state->predicate->narrow(frame, rows, true);
    if (frame.hasFailures())
        rows.keepIf([&](std::uint32_t row) { return !frame.isFailed(row); });
    return rows.list();
}

std::size_t BlockEvaluator::failures() const {
    return m_state->frame.failures();
}

std::uint32_t BlockEvaluator::firstFailedRow() const {
    return m_state->frame.firstFailedRow();
}

const std::string& BlockEvaluator::firstFailure() const {
    return m_state->frame.firstFailure();
}

} // namespace tavix::expression
