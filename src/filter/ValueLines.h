#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavix {

/// The values of a text that has one on each line. Empty lines are left out.
[[nodiscard]] std::vector<std::string> ValuesOfLines(std::string_view text);

/// The values in one line, the first of them by name: "6 values: a, b, c, d, …".
[[nodiscard]] std::string ValueListSummary(const std::vector<std::string>& values);

} // namespace tavix
