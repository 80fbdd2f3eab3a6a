#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Text for a terminal: how wide it is there, and made harmless.
namespace tavix::cli {

/// The columns that `text` takes: two for wide East Asian characters, none for marks that join the one before.
[[nodiscard]] std::size_t displayWidth(std::string_view text);

/// Control characters as escapes ("\n", "\x1b"), so that a value can neither break a table nor steer the terminal;
/// likewise the characters that turn the direction of writing. A byte that is no UTF-8 becomes U+FFFD.
[[nodiscard]] std::string printable(std::string_view text);

/// `text` when it fits into `width` columns; else its beginning and "…".
[[nodiscard]] std::string cutToWidth(std::string_view text, std::size_t width);

/// `text` as lines of at most `width` columns, made harmless: folded at its line ends and between words, and within a
/// word that is longer than a line. At least one line.
[[nodiscard]] std::vector<std::string> foldToWidth(std::string_view text, std::size_t width);

} // namespace tavix::cli
