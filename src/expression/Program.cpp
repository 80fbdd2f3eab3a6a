#include "expression/Program.h"

#include "base/DateTicks.h"
#include "expression/Parser.h"

#include <algorithm>
#include <new>

namespace tavix::expression {

namespace {

using Limits = std::numeric_limits<std::int64_t>;

constexpr IntegerRange kNowhere{1, 0};

IntegerRange both(IntegerRange left, IntegerRange right) {
    return {std::max(left.low, right.low), std::min(left.high, right.high)};
}

IntegerRange either(IntegerRange left, IntegerRange right) {
    if (left.isEmpty() || right.isEmpty())
        return left.isEmpty() ? right : left;
    return {std::min(left.low, right.low), std::max(left.high, right.high)};
}

IntegerRange rangeOfComparison(Comparison comparison, std::int64_t number) {
    switch (comparison) {
    case Comparison::Equal:
        return {number, number};
    case Comparison::Less:
        return number == Limits::min() ? kNowhere : IntegerRange{Limits::min(), number - 1};
    case Comparison::LessOrEqual:
        return {Limits::min(), number};
    case Comparison::Greater:
        return number == Limits::max() ? kNowhere : IntegerRange{number + 1, Limits::max()};
    case Comparison::GreaterOrEqual:
        return {number, Limits::max()};
    case Comparison::NotEqual:
        break;
    }
    return {};
}

Comparison negated(Comparison comparison) {
    switch (comparison) {
    case Comparison::Equal:
        return Comparison::NotEqual;
    case Comparison::NotEqual:
        return Comparison::Equal;
    case Comparison::Less:
        return Comparison::GreaterOrEqual;
    case Comparison::LessOrEqual:
        return Comparison::Greater;
    case Comparison::Greater:
        return Comparison::LessOrEqual;
    case Comparison::GreaterOrEqual:
        return Comparison::Less;
    }
    return comparison;
}

/// The range of the field for which the node can be true, or false.
IntegerRange rangeOf(const Node& node, std::size_t field, bool wanted) {
    switch (node.kind) {
    case NodeKind::Constant:
        return !node.constant.isNull() && node.constant.boolean == wanted ? IntegerRange{} : kNowhere;
    case NodeKind::Not:
        return rangeOf(node.child(0), field, !wanted);
    case NodeKind::And:
    case NodeKind::Or: {
        const bool needsAll = (node.kind == NodeKind::And) == wanted;
        IntegerRange range = needsAll ? IntegerRange{} : kNowhere;
        for (const NodePtr& child : node.children) {
            const IntegerRange part = rangeOf(*child, field, wanted);
            range = needsAll ? both(range, part) : either(range, part);
        }
        return range;
    }
    case NodeKind::If: {
        // A condition that is not true may be null, so only the ranges for true can be used.
        IntegerRange range = kNowhere;
        const std::size_t last = node.children.size() - 1;
        for (std::size_t i = 0; i < last; i += 2)
            range = either(range, both(rangeOf(node.child(i), field, true), rangeOf(node.child(i + 1), field, wanted)));
        return either(range, rangeOf(node.child(last), field, wanted));
    }
    case NodeKind::Compare: {
        const Node& subject = node.child(0);
        const Node& constant = node.child(1);
        if (subject.kind != NodeKind::Field || subject.field != field || constant.constant.type != Type::Integer)
            return {};
        return rangeOfComparison(wanted ? node.comparison : negated(node.comparison), constant.constant.integer);
    }
    default:
        return {};
    }
}

void markUsed(const Node& node, std::vector<bool>& used) {
    if (node.kind == NodeKind::Field)
        used[node.field] = true;
    for (const NodePtr& child : node.children)
        markUsed(*child, used);
}

} // namespace

Program::Program(NodePtr tree, std::span<const Field> fields)
    : m_tree(std::move(tree)),
      m_fields(std::make_shared<const std::vector<Field>>(fields.begin(), fields.end())),
      m_used(fields.size()) {
    markUsed(*m_tree, m_used);
}

bool Program::uses(std::size_t field) const {
    return field < m_used.size() && m_used[field];
}

IntegerRange Program::passingRange(std::size_t field) const {
    if (type() != Type::Boolean && type() != Type::Null)
        return {};
    return rangeOf(tree(), field, true);
}

namespace {

Compiled compileText(std::string_view text, std::span<const Field> fields, Wanted wanted, std::int64_t now,
                     Columns columns, auto makeProgram) {
    Compiled compiled;
    Parsed parsed = parse(text);
    if (parsed.error) {
        compiled.error = *std::move(parsed.error);
        return compiled;
    }
    Checked checked = check(*parsed.tree, text.size(), fields, wanted, now, columns);
    if (checked.error)
        compiled.error = *std::move(checked.error);
    else
        compiled.program = makeProgram(std::move(checked.tree));
    compiled.remark = std::move(checked.remark);
    return compiled;
}

} // namespace

std::int64_t thisMoment() {
    return ticksOf(SystemClock().now());
}

Compiled compile(std::string_view text, std::span<const Field> fields, Wanted wanted, std::int64_t now,
                 Columns columns) {
    try {
        return compileText(text, fields, wanted, now, columns,
                           [&](NodePtr tree) { return Program(std::move(tree), fields); });
    } catch (const std::bad_alloc&) {
        Compiled compiled;
        compiled.error = ExpressionError{"there is not enough memory for this expression", 1, 1};
        return compiled;
    }
}

} // namespace tavix::expression
