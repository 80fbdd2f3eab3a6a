#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavix {

/// The text with a visible sign for each invisible character: "·" for spaces at both ends, "→" for tabs, control
/// pictures for control characters ("␊"), "⍽" for no-break spaces, and the code point ("‹U+200B›") for all others, such
/// as zero-width characters, other spaces and direction marks. Invalid UTF-8 becomes U+FFFD. Stops after about
/// `mostBytes` of the text, at the end of a character.
[[nodiscard]] std::string showInvisible(std::string_view text, std::size_t mostBytes = std::string_view::npos);

} // namespace tavix
