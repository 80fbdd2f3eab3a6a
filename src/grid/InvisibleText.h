#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace tavix {

/// The text with a sign for each character that leaves no mark of its own: blanks at both ends "·", tabs "→", control
/// characters their pictures ("␊"), no-break spaces "⍽", and all others, such as zero-width characters, other spaces
/// and marks of writing direction, their code point ("‹U+200B›"). Bytes that are no UTF-8 become U+FFFD. No more than
/// `mostBytes` of the text are looked at, give or take a character.
[[nodiscard]] std::string showInvisible(std::string_view text, std::size_t mostBytes = std::string_view::npos);

} // namespace tavix
