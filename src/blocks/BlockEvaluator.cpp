#include "blocks/BlockEvaluator.h"

#include "blocks/BlockPieces.h"
#include "blocks/Frame.h"
#include "blocks/Predicate.h"

#include <vector>

namespace tavix::expression {

struct BlockEvaluator::State {
    explicit State(const Node& condition) : pieces(condition), predicate(makePredicate(condition)) {}

    void evaluate() {
        rows.fill(frame.rows());
        predicate->narrow(frame, rows, true);
    }
    void accept(std::uint32_t first, bool isWhole) {
        if (frame.hasFailures()) {
            rows.keepIf([&](std::uint32_t row) { return !frame.isFailed(row); });
            addFailures(failures, frame, first);
        }
        if (!isWhole)
            rows.forEach([&](std::uint32_t row) { passing.push_back(first + row); });
    }

    Frame frame;
    BlockPieces pieces;
    RowSet rows;
    PredicatePtr predicate;
    BlockFailures failures;
    std::vector<std::uint32_t> passing; ///< of a block that was evaluated in pieces
    bool wasStopped = false;
};

BlockEvaluator::BlockEvaluator(Program program)
    : m_program(std::move(program)), m_state(std::make_unique<State>(m_program.tree())) {}

BlockEvaluator::~BlockEvaluator() = default;

std::span<const std::uint32_t> BlockEvaluator::passing(const Block& block, const GoOn& goOn) {
    State& state = *m_state;
    state.failures = {};
    state.passing.clear();
    bool isWhole = false;
    const auto accept = [&](std::uint32_t first) {
        isWhole = state.frame.rows() == block.rows;
        state.accept(first, isWhole);
    };
    state.wasStopped = !state.pieces.walk(
        state.frame, block, goOn, [&] { state.evaluate(); }, accept);
    return isWhole ? state.rows.list() : std::span<const std::uint32_t>(state.passing);
}

bool BlockEvaluator::wasStopped() const {
    return m_state->wasStopped;
}

const BlockFailures& BlockEvaluator::failures() const {
    return m_state->failures;
}

} // namespace tavix::expression
