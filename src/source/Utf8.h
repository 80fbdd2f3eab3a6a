#pragma once

#include <cstddef>
#include <string_view>

namespace tavix::source {

/// The length of the longest well-formed UTF-8 prefix of `text`.
[[nodiscard]] std::size_t validUtf8Prefix(std::string_view text);

/// How many bytes at the end of `text` may be the start of an incomplete character: 0 to 3.
[[nodiscard]] std::size_t unfinishedUtf8Tail(std::string_view text);

/// Copies `text` to `out`, with U+FFFD for each byte that belongs to no well-formed character, and returns the bytes
/// written; `out` has room for three times the text.
std::size_t repairUtf8(std::string_view text, char* out);

} // namespace tavix::source
