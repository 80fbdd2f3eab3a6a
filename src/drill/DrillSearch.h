#pragma once

#include "base/Result.h"
#include "drill/DrillRows.h"
#include "filter/QuickSearch.h"

#include <cstdint>
#include <vector>

namespace tavix {

/// For searches in all columns.
inline constexpr int kAllColumns = -1;

/// The rows, in reading order, with a cell in the column that the term asks for. In all columns one such cell is
/// enough, and for a negation (<>x, !null) no cell may be what it excludes. A plain text is found ignoring case as
/// findText() does. Fails with a message for the user when the term is not valid.
[[nodiscard]] Result<std::vector<std::uint32_t>> searchRows(const DrillRows& rows, const QuickTerm& term, int column);

} // namespace tavix
