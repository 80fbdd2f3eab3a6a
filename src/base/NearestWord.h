#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavix {

/// The one of `known` that `word` was probably meant to be; "" if none is similar.
[[nodiscard]] std::string nearestWord(std::string_view word, std::span<const std::string> known);

/// " (did you mean "x"?)" or nothing.
[[nodiscard]] std::string suggestion(std::string_view word, std::span<const std::string> known);

} // namespace tavix
