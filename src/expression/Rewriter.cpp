#include "expression/Rewriter.h"

#include "expression/Conversion.h"
#include "expression/NodeFactory.h"

#include <optional>

namespace tavix::expression {

namespace {

std::optional<std::int64_t> fixedInteger(const Node& node) {
    if (!node.isConstant() || node.constant.type != Type::Integer)
        return std::nullopt;
    return node.constant.integer;
}

NodePtr callOf(const char* name, Type type, NodePtr first, NodePtr second = nullptr) {
    NodePtr node = makeNode(NodeKind::Call, type);
    node->function = findFunction(name);
    node->children.push_back(std::move(first));
    if (second)
        node->children.push_back(std::move(second));
    return node;
}

/// Whether the node compares compare(a, b, ...) with 0.
NodePtr rewriteCompare(NodePtr node, ConstantFolder& folder) {
    Node& call = *node->children[0];
    const bool hasCase = call.children.size() > 2;
    if (hasCase && (!call.child(2).isConstant() || call.child(2).constant.isNull()))
        return node;
    const bool ignoresCase = hasCase && call.child(2).constant.boolean;
    NodePtr left = std::move(call.children[0]);
    NodePtr right = std::move(call.children[1]);
    if (ignoresCase && left->type != Type::Date) {
        left = folder.fold(callOf("lower", Type::Text, std::move(left)));
        right = folder.fold(callOf("lower", Type::Text, std::move(right)));
    }
    node->children[0] = std::move(left);
    node->children[1] = std::move(right);
    return node;
}

/// Whether this comparison of a position with the number means that there is one (true), that there is none (false), or
/// neither.
std::optional<bool> asksForOccurrence(Comparison comparison, std::int64_t number) {
    if (number == 0) {
        if (comparison == Comparison::NotEqual || comparison == Comparison::Greater)
            return true;
        if (comparison == Comparison::Equal || comparison == Comparison::LessOrEqual)
            return false;
    }
    if (number == 1 && comparison == Comparison::GreaterOrEqual)
        return true;
    if (number == 1 && comparison == Comparison::Less)
        return false;
    return std::nullopt;
}

NodePtr rewriteInstr(NodePtr node, bool occurs) {
    Node& call = *node->children[0];
    NodePtr contains = callOf("contains", Type::Boolean, std::move(call.children[0]), std::move(call.children[1]));
    if (occurs)
        return contains;
    NodePtr negated = makeNode(NodeKind::Not, Type::Boolean);
    negated->children.push_back(std::move(contains));
    return negated;
}

NodePtr comparisonOf(Comparison comparison, NodePtr left, NodePtr right) {
    NodePtr node = makeNode(NodeKind::Compare, Type::Boolean);
    node->comparison = comparison;
    node->children.push_back(std::move(left));
    node->children.push_back(std::move(right));
    return node;
}

/// A field between two constants becomes two comparisons, for which blocks have operators.
NodePtr rewriteBetween(NodePtr node) {
    const Node& field = node->child(0);
    const auto isFixed = [](const Node& limit) { return limit.isConstant() && !limit.constant.isNull(); };
    if (field.kind != NodeKind::Field || !isFixed(node->child(1)) || !isFixed(node->child(2)))
        return node;
    NodePtr same = copyOfField(field);
    NodePtr both = makeNode(NodeKind::And, Type::Boolean);
    both->children.push_back(
        comparisonOf(Comparison::GreaterOrEqual, std::move(node->children[0]), std::move(node->children[1])));
    both->children.push_back(comparisonOf(Comparison::LessOrEqual, std::move(same), std::move(node->children[2])));
    return both;
}

} // namespace

NodePtr rewrite(NodePtr node, ConstantFolder& folder) {
    if (isCallOf(*node, "between"))
        return rewriteBetween(std::move(node));
    if (node->kind != NodeKind::Compare)
        return node;
    if (node->child(0).isConstant() && !node->child(1).isConstant()) {
        std::swap(node->children[0], node->children[1]);
        node->comparison = mirrored(node->comparison);
    }
    const auto number = fixedInteger(node->child(1));
    if (!number)
        return node;
    if (isCallOf(node->child(0), "compare") && *number == 0)
        return rewriteCompare(std::move(node), folder);
    if (isCallOf(node->child(0), "instr") && node->child(0).children.size() == 2) {
        if (const auto occurs = asksForOccurrence(node->comparison, *number))
            return rewriteInstr(std::move(node), *occurs);
    }
    return node;
}

} // namespace tavix::expression
