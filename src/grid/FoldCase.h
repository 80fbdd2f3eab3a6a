#pragma once

#include <string>
#include <string_view>

namespace tavix {

/// The text as it is compared without regard to case: Unicode's full case folding, which no locale changes.
[[nodiscard]] std::string foldCase(std::string_view text);

} // namespace tavix
