#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Text for a terminal: its width, and escapes for characters that would disturb it.
namespace tavix::cli {

/// The number of columns that `text` occupies: two for a wide East Asian character, none for a combining mark.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// Escapes control characters ("\n", "\x1b") and characters that change the direction of writing, so that a value can
/// neither break a table nor control the terminal. Bytes that are not valid UTF-8 become U+FFFD.
[[nodiscard]] std::string printable(std::string_view text);

/// `text`, cut with "…" when it is wider than `width` columns.
[[nodiscard]] std::string cutToWidth(std::string_view text, std::size_t width);

/// `text`, escaped and folded into lines of at most `width` columns: at its line ends, between words, and within a word
/// that is longer than a line. Returns at least one line.
[[nodiscard]] std::vector<std::string> foldToWidth(std::string_view text, std::size_t width);

} // namespace tavix::cli
