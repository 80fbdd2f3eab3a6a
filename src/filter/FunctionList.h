#pragma once

#include "base/Result.h"
#include "filter/FunctionTexts.h"

#include <vector>

namespace tavix {

class PrViewer;

/// The functions of the expression language as the repository library lists them; fails with the library's error text.
[[nodiscard]] Result<std::vector<FilterFunction>> ReadFunctions(PrViewer& viewer);

} // namespace tavix
