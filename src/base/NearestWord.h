#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavix {

/// Of `known` the word that `word` was probably meant to be; "" when none is near.
[[nodiscard]] std::string nearestWord(std::string_view word, std::span<const std::string> known);

/// " (did you mean "x"?)" or nothing.
[[nodiscard]] std::string suggestion(std::string_view word, std::span<const std::string> known);

} // namespace tavix
