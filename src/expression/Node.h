#pragma once

#include "expression/Catalogue.h"
#include "expression/Matcher.h"
#include "expression/Syntax.h"
#include "expression/Value.h"

#include <cstdint>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

namespace tavix::expression {

enum class NodeKind : std::uint8_t {
    Constant,
    Field,
    Convert, ///< the child, brought to this node's type
    Call,    ///< a function with an implementation
    IsNull,
    FirstNonNull,
    Not,
    Negate,
    And,
    Or,
    Compare,    ///< children of one type, or Integer and Real
    Arithmetic, ///< both children and the result Integer, or all Real
    If,         ///< as in Syntax, and always with a last value
    InList,     ///< children of one type
    Matches,    ///< the child against a matcher
};

/// The members of a list of constant texts.
using TextSet = std::unordered_set<std::string_view>;

/// An expression whose names and types are settled. Immutable once it is made, so shared by all evaluators.
struct Node {
    NodeKind kind = NodeKind::Constant;
    Type type = Type::Null;
    std::size_t field = 0; ///< number of the field in the list that the caller gave
    const Function* function = nullptr;
    Comparison comparison = Comparison::Equal;
    Arithmetic arithmetic = Arithmetic::Add;
    std::shared_ptr<const Matcher> matcher;
    Value constant;   ///< a text refers to `text`
    std::string text; ///< of a constant, or the name of a field
    TextSet list;     ///< of InList, when all members are constant texts; refers to the children's
    bool hasList = false;
    bool hasNull = false; ///< InList: null was among the members
    std::vector<std::unique_ptr<Node>> children;

    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    [[nodiscard]] bool isConstant() const { return kind == NodeKind::Constant; }
    [[nodiscard]] const Node& child(std::size_t index) const { return *children[index]; }
};

using NodePtr = std::unique_ptr<Node>;

[[nodiscard]] inline NodePtr makeNode(NodeKind kind, Type type) {
    auto node = std::make_unique<Node>();
    node->kind = kind;
    node->type = type;
    return node;
}

/// Owns a copy of the value's text.
[[nodiscard]] NodePtr makeConstant(const Value& value);

/// A constant text; null is none.
[[nodiscard]] bool isFixedText(const Node& node);

/// Whether the two have the same value in every row, as far as their form shows.
[[nodiscard]] bool isSame(const Node& one, const Node& other);

/// Whether the node calls the function of that name.
[[nodiscard]] bool isCallOf(const Node& node, std::string_view function);

} // namespace tavix::expression
