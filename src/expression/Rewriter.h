#pragma once

#include "expression/ConstantFolder.h"
#include "expression/Node.h"

namespace tavix::expression {

/// Returns an equivalent node that is cheaper to evaluate; the children must be rewritten and folded. Turns the forms
/// that the filter dialog writes into direct tests: compare(a, b, false) == 0 becomes a == b, and instr(a, b) != 0
/// becomes contains(a, b).
[[nodiscard]] NodePtr rewrite(NodePtr node, ConstantFolder& folder);

} // namespace tavix::expression
