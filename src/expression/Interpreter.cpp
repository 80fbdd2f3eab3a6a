#include "expression/Interpreter.h"

#include "expression/Cells.h"
#include "expression/Conversion.h"

#include <algorithm>

namespace tavix::expression {

Value Interpreter::evaluate(const Node& node, std::span<const Value> row) {
    switch (node.kind) {
    case NodeKind::Constant:
        return node.constant;
    case NodeKind::Field:
        return readCell(row[node.field], node.type, node.text, m_scratch);
    case NodeKind::Convert:
        return convert(evaluate(node.child(0), row), node.type, m_scratch);
    case NodeKind::Call:
        return evaluateCall(node, row);
    case NodeKind::IsNull:
        return Value::ofBoolean(evaluate(node.child(0), row).isNull());
    case NodeKind::FirstNonNull:
        for (const NodePtr& child : node.children) {
            if (const Value value = evaluate(*child, row); !value.isNull())
                return value;
        }
        return {};
    case NodeKind::And:
    case NodeKind::Or:
        return evaluateJunction(node, row);
    case NodeKind::If:
        return evaluateIf(node, row);
    case NodeKind::InList:
        return evaluateList(node, row);
    default:
        return evaluateOperator(node, row);
    }
}

bool Interpreter::is(bool wanted, const Node& condition, std::span<const Value> row) {
    switch (condition.kind) {
    case NodeKind::Not:
        return is(!wanted, condition.child(0), row);
    case NodeKind::And:
    case NodeKind::Or: {
        const auto holdsFor = [&](const NodePtr& child) { return is(wanted, *child, row); };
        // "and" is true when all parts are, false when one is.
        return (condition.kind == NodeKind::And) == wanted ? std::ranges::all_of(condition.children, holdsFor)
                                                           : std::ranges::any_of(condition.children, holdsFor);
    }
    case NodeKind::If: {
        const std::size_t last = condition.children.size() - 1;
        for (std::size_t i = 0; i < last; i += 2) {
            if (is(true, condition.child(i), row))
                return is(wanted, condition.child(i + 1), row);
        }
        return is(wanted, condition.child(last), row);
    }
    default: {
        const Value value = evaluate(condition, row);
        return !value.isNull() && value.boolean == wanted;
    }
    }
}

Value Interpreter::evaluateJunction(const Node& node, std::span<const Value> row) {
    const bool decides = node.kind == NodeKind::Or;
    bool sawNull = false;
    for (const NodePtr& child : node.children) {
        const Value value = evaluate(*child, row);
        if (!value.isNull() && value.boolean == decides)
            return value;
        sawNull = sawNull || value.isNull();
    }
    return sawNull ? Value{} : Value::ofBoolean(!decides);
}

Value Interpreter::evaluateCall(const Node& node, std::span<const Value> row) {
    const std::size_t first = m_arguments.size();
    bool isNull = false;
    for (const NodePtr& child : node.children) {
        const Value value = evaluate(*child, row);
        isNull = isNull || value.isNull();
        m_arguments.push_back(value);
    }
    Value result;
    if (!isNull && !m_scratch.hasFailed())
        result = callFunction(node, std::span(m_arguments).subspan(first), m_scratch);
    m_arguments.resize(first);
    return result;
}

Value Interpreter::evaluateList(const Node& node, std::span<const Value> row) {
    const Value subject = evaluate(node.child(0), row);
    bool isFound = node.hasList && !subject.isNull() && node.list.contains(subject.text);
    bool sawNull = node.hasNull;
    for (std::size_t i = 1; !node.hasList && i < node.children.size(); ++i) {
        const Value member = evaluate(node.child(i), row);
        sawNull = sawNull || member.isNull();
        isFound = isFound || (!subject.isNull() && !member.isNull() && isMember(node, i, subject, member));
    }
    return subject.isNull() || (sawNull && !isFound) ? Value{} : Value::ofBoolean(isFound);
}

Value Interpreter::evaluateIf(const Node& node, std::span<const Value> row) {
    const std::size_t last = node.children.size() - 1;
    for (std::size_t i = 0; i < last; i += 2) {
        if (is(true, node.child(i), row))
            return evaluate(node.child(i + 1), row);
    }
    return evaluate(node.child(last), row);
}

Value Interpreter::evaluateOperator(const Node& node, std::span<const Value> row) {
    const Value left = evaluate(node.child(0), row);
    if (node.kind == NodeKind::Compare || node.kind == NodeKind::CompareCell || node.kind == NodeKind::Arithmetic) {
        const Value right = evaluate(node.child(1), row);
        if (left.isNull() || right.isNull())
            return {};
        if (node.kind == NodeKind::CompareCell)
            return compareCell(node.comparison, left.text, right);
        return node.kind == NodeKind::Compare ? Value::ofBoolean(holds(node.comparison, compareValues(left, right)))
                                              : calculate(node.arithmetic, left, right, m_scratch);
    }
    if (left.isNull())
        return {};
    switch (node.kind) {
    case NodeKind::Not:
        return Value::ofBoolean(!left.boolean);
    case NodeKind::Negate:
        return negate(left, m_scratch);
    case NodeKind::Matches:
        return Value::ofBoolean(node.matcher->matches(left.text, false, m_scratch));
    default:
        return {};
    }
}

} // namespace tavix::expression
