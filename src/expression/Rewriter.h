#pragma once

#include "expression/Node.h"

namespace tavix::expression {

/// A node with only constants below it becomes a constant, of the same type even when it is null. What fails is left,
/// to fail whenever it is evaluated.
[[nodiscard]] NodePtr fold(NodePtr node);

/// An equal node that is cheaper to evaluate, given that its children are rewritten and folded. Here the forms in which
/// the conditions of the filter dialog are written become the question that they stand for:
/// compare(a, b, false) == 0 is a == b, and instr(a, b) != 0 is contains(a, b).
[[nodiscard]] NodePtr rewrite(NodePtr node);

} // namespace tavix::expression
