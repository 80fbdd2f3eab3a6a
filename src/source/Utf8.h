#pragma once

#include <cstddef>
#include <string_view>

namespace tavix::source {

/// The length of the well-formed UTF-8 at the beginning of `text`: its size when all of it is well-formed.
[[nodiscard]] std::size_t validUtf8Prefix(std::string_view text);

/// How many bytes at the end of `text` may be the beginning of a character that goes on behind it: 0 to 3.
[[nodiscard]] std::size_t unfinishedUtf8Tail(std::string_view text);

/// Copies `text` to `out`, each byte that belongs to no well-formed character as U+FFFD, and returns the bytes
/// written; `out` has room for three times the text.
std::size_t repairUtf8(std::string_view text, char* out);

} // namespace tavix::source
