#pragma once

#include "expression/Folder.h"
#include "expression/Node.h"
#include "expression/TextOperators.h"

#include <memory>
#include <vector>

/// How the nodes of an expression are made once its names and types are settled.
namespace tavix::expression {

/// The type that a letter of the catalogue asks for; Null for any.
[[nodiscard]] Type typeOf(char letter);
/// Whether a parameter of the type takes an argument of another one.
[[nodiscard]] bool accepts(Type parameter, Type argument);
/// Of the first argument that is not null; Null when all are.
[[nodiscard]] Type typeAmong(const std::vector<NodePtr>& arguments);

[[nodiscard]] NodePtr made(NodeKind kind, Type type, std::vector<NodePtr> children);
/// The node as a value of the type, which must accept its own.
[[nodiscard]] NodePtr brought(NodePtr node, Type type, Folder& folder);
/// Whether the first argument is among the others. A null among them is not kept as a member.
[[nodiscard]] NodePtr inList(std::vector<NodePtr> arguments);
/// Whether the first of two arguments matches; the other one is the pattern that became the matcher.
[[nodiscard]] NodePtr matching(std::vector<NodePtr> arguments, std::shared_ptr<const Matcher> matcher);

} // namespace tavix::expression
