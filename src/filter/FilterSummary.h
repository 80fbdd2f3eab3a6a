#pragma once

#include <string>
#include <string_view>

namespace tavix {

/// A filter text in one line, for menus and tooltips: its conditions in words, or its code; "" without a filter.
/// Conditions for the rows to remove become "not (...)", so that every summary describes the rows that stay.
[[nodiscard]] std::string FilterSummary(std::string_view filterText);

} // namespace tavix
