#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// UTF-8 text by characters (code points). A byte that belongs to no well-formed character counts as one.
namespace tavix {

[[nodiscard]] std::size_t CharacterCount(std::string_view text);
/// Each character by itself, as the expression language's lower() does, so that both sides of a comparison agree.
/// Bytes that are no character stay.
[[nodiscard]] std::string LowerText(std::string_view text);
/// The text without its first and last character; empty for texts of two or fewer.
[[nodiscard]] std::string_view WithoutEnds(std::string_view text);
/// Well-formed: each byte that belongs to no character becomes U+FFFD.
[[nodiscard]] std::string RepairedText(std::string_view text);

} // namespace tavix
