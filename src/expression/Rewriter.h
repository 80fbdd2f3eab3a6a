#pragma once

#include "expression/Folder.h"
#include "expression/Node.h"

namespace tavix::expression {

/// An equal node that is cheaper to evaluate, given that its children are rewritten and folded. Here the forms in which
/// the conditions of the filter dialog are written become the question that they stand for:
/// compare(a, b, false) == 0 is a == b, and instr(a, b) != 0 is contains(a, b).
[[nodiscard]] NodePtr rewrite(NodePtr node, Folder& folder);

} // namespace tavix::expression
