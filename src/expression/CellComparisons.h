#pragma once

#include "expression/ConstantFolder.h"
#include "expression/Node.h"

#include <string>
#include <vector>

/// Makes the nodes that compare the columns of tables by what their cells are (Cells.h). Each function returns null and
/// leaves its arguments alone when they are compared as everywhere else.
namespace tavix::expression {

/// Of a column with a number or another column.
[[nodiscard]] NodePtr cellComparison(Comparison comparison, std::vector<NodePtr>& sides);
/// A call of between, inlist, nullif, min or max.
[[nodiscard]] NodePtr cellCall(const Function& function, std::vector<NodePtr>& arguments, ConstantFolder& folder);

/// A remark for the author about the values, before they are converted; "" when there is none. `isOrder`: they are
/// compared by < or the like.
[[nodiscard]] std::string remarkOnCells(const std::vector<NodePtr>& values, bool isOrder);

} // namespace tavix::expression
