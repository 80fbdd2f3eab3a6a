#pragma once

#include "expression/Catalogue.h"
#include "expression/Matcher.h"
#include "expression/PreparedFunction.h"
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
    Convert, ///< converts the child to this node's type
    Call,    ///< calls a function with an implementation or a prepared one
    IsNull,
    FirstNonNull,
    Not,
    Negate,
    And,
    Or,
    Compare,     ///< children of one type, or Integer and Real
    CompareCell, ///< a text field with a number or another text field, by what their cells are; see Cells.h
    Arithmetic,  ///< both children and the result Integer, or all Real
    If,          ///< as in Syntax, but always with a last value
    InList,      ///< children of one type, unless it has cells
    Matches,     ///< tests the child with a matcher
};

/// The members of a list of constant texts.
using TextSet = std::unordered_set<std::string_view>;

/// An expression whose names and types are resolved. Immutable, so that evaluators can share it.
struct Node {
    NodeKind kind = NodeKind::Constant;
    Type type = Type::Null;
    std::size_t field = 0; ///< index in the caller's list of fields
    const Function* function = nullptr;
    std::shared_ptr<const PreparedFunction> prepared; ///< of a call with fixed arguments; null for most functions
    Comparison comparison = Comparison::Equal;
    Arithmetic arithmetic = Arithmetic::Add;
    std::shared_ptr<const Matcher> matcher;
    Value constant;   ///< a text refers to `text`
    std::string text; ///< of a constant, or the name of a field
    TextSet list;     ///< of InList, when all members are constant texts; refers to the children's texts
    bool hasList = false;
    bool hasNull = false;  ///< InList: null was among the members
    bool hasCells = false; ///< InList: text fields are compared by what their cells are, with numbers or other fields
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

/// The node owns a copy of the value's text.
[[nodiscard]] NodePtr makeConstant(const Value& value);

/// Whether the node is a constant text other than null.
[[nodiscard]] bool isFixedText(const Node& node);

/// The value of a call with these arguments, of which none is null.
[[nodiscard]] inline Value callFunction(const Node& call, std::span<const Value> arguments, Scratch& scratch) {
    return call.prepared ? call.prepared->call(arguments, scratch) : call.function->implementation(arguments, scratch);
}

/// Whether the value of child `place` of an InList equals that of the first child; neither is null.
[[nodiscard]] bool isMember(const Node& list, std::size_t place, const Value& subject, const Value& member);

/// Whether both have the same structure, and so the same value in every row.
[[nodiscard]] bool isSame(const Node& one, const Node& other);

/// Whether the node calls the function of that name.
[[nodiscard]] bool isCallOf(const Node& node, std::string_view function);

} // namespace tavix::expression
