#pragma once

#include <string>
#include <string_view>

/// The shape of a text: which kinds of characters stand where.
namespace tavix::pattern {

/// Appends the pattern of a UTF-8 text: 'A' for an upper-case or title-case letter (Unicode categories Lu, Lt), 'a' for
/// any other letter (Ll, Lm, Lo), '9' for a decimal digit (Nd), every other character itself. Bytes that are no UTF-8
/// are kept as they are.
void appendCharacterPattern(std::string& out, std::string_view utf8);
[[nodiscard]] std::string characterPattern(std::string_view utf8);

/// The short form of a pattern: four or more equal characters in a row become one with its count, "99999" is "9{5}".
/// An opening brace of the text itself always carries its count, "{{1}", so that it is never taken for one.
[[nodiscard]] std::string shortPattern(std::string_view pattern);

} // namespace tavix::pattern
