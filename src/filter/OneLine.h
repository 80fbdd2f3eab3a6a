#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavix {

/// The text on one line: each run of white space (the Unicode property White_Space) becomes a blank, and those at both
/// ends go.
[[nodiscard]] std::string OneLine(std::string_view text);

/// The first `most` characters of a longer text, followed by an ellipsis.
[[nodiscard]] std::string Shortened(std::string_view text, std::size_t most);

} // namespace tavix
