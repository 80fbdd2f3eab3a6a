#pragma once

#include "base/ByteMask.h"

#include <string>
#include <string_view>

/// The pattern of a text: the kinds of its characters, in order.
namespace tavix::pattern {

/// Appends the pattern of a UTF-8 text: 'A' for an upper-case or title-case letter (Unicode categories Lu, Lt), 'a' for
/// any other letter (Ll, Lm, Lo), '9' for a decimal digit (Nd), every other character itself. Bytes that are not valid
/// UTF-8 are kept.
void appendCharacterPattern(std::string& out, std::string_view utf8);

/// Writes the same pattern to `to`, which has room for as many bytes as the text, and returns its end. `kinds` becomes
/// byteMask() of the text, which costs little more.
[[nodiscard]] char* putCharacterPattern(char* to, std::string_view utf8, ByteMask& kinds);

/// The short form of a pattern: four or more equal characters in a row become one with its count, "99999" is "9{5}". An
/// opening brace of the text itself always has its count, "{{1}", to distinguish it.
[[nodiscard]] std::string shortPattern(std::string_view pattern);

} // namespace tavix::pattern
