#pragma once

#include <string>
#include <string_view>

namespace tavix {

/// The text for comparisons that ignore case: Unicode's full case folding, independent of the locale.
[[nodiscard]] std::string foldCase(std::string_view text);

} // namespace tavix
