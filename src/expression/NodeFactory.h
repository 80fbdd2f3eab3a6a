#pragma once

#include "expression/ConstantFolder.h"
#include "expression/Node.h"
#include "expression/TextOperators.h"

#include <memory>
#include <vector>

/// Makes the nodes of an expression after its names and types were resolved.
namespace tavix::expression {

/// The type of a letter of the catalogue; Null for any.
[[nodiscard]] Type typeOf(char letter);
/// Whether a parameter of this type accepts an argument of the other type.
[[nodiscard]] bool accepts(Type parameter, Type argument);
/// The type of the first argument that is not null; Null when all are.
[[nodiscard]] Type typeAmong(const std::vector<NodePtr>& arguments);

/// Of a node of kind Field.
[[nodiscard]] NodePtr copyOfField(const Node& field);
[[nodiscard]] NodePtr made(NodeKind kind, Type type, std::vector<NodePtr> children);
/// Converts the node to the type, which must accept the node's own.
[[nodiscard]] NodePtr convertedNode(NodePtr node, Type type, ConstantFolder& folder);
/// A test whether the first argument is among the others. A null among them is not kept as a member.
[[nodiscard]] NodePtr inList(std::vector<NodePtr> arguments);
/// A test whether the first of two arguments matches; the other one is the pattern of the matcher.
[[nodiscard]] NodePtr matching(std::vector<NodePtr> arguments, std::shared_ptr<const Matcher> matcher);

} // namespace tavix::expression
