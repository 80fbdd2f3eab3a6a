#pragma once

#include <string>
#include <string_view>

namespace tavix {

/// A filter text in one line, for menus and tips: its conditions in words, or its code; "" for no filter. Conditions
/// that say which rows go are put as "not (...)", so that every summary says which rows stay.
[[nodiscard]] std::string FilterSummary(std::string_view filterText);

} // namespace tavix
