#pragma once

#include <string_view>

/// Texts that people and programs write where a value is unknown.
namespace tavix::findings {

/// Whether the text is such a word in lower case, in upper case or with a capital, or a sign such as "-".
[[nodiscard]] bool isPlaceholder(std::string_view text);
/// Whether the word is also an ordinary value, so that it is suspicious among numbers and dates alone.
[[nodiscard]] bool isOrdinaryWord(std::string_view text);
/// Whether somebody typed it to try a form out.
[[nodiscard]] bool isTestWord(std::string_view text);

} // namespace tavix::findings
