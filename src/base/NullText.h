#pragma once

#include <string_view>

namespace tavix {

/// How a null among values is shown.
inline constexpr std::string_view kNullValue = "(null value)";

} // namespace tavix
