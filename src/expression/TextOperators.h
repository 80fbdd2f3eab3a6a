#pragma once

#include "base/Characters.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Operations on single texts. Counts and positions are in code points.
namespace tavix::expression {

/// Maps each character by its simple case mapping, so that the number of characters stays the same.
void appendLower(std::string& out, std::string_view text);
void appendUpper(std::string& out, std::string_view text);
[[nodiscard]] std::string lowerText(std::string_view text);
/// For ASCII only, without a branch for each byte.
void lowerAscii(const char* from, std::size_t size, char* to);
void upperAscii(const char* from, std::size_t size, char* to);

/// Negative counts are taken as 0.
[[nodiscard]] std::string_view leftOf(std::string_view text, std::int64_t count);
[[nodiscard]] std::string_view rightOf(std::string_view text, std::int64_t count);
/// From character `first` (counted from 1). Positions before the text use up the count: from 0, three characters are
/// the first two.
[[nodiscard]] std::string_view substringOf(std::string_view text, std::int64_t first, std::int64_t count);

/// The same, faster for texts that are known to be ASCII.
[[nodiscard]] inline std::string_view leftOf(std::string_view text, std::int64_t count, bool isAscii) {
    if (!isAscii)
        return leftOf(text, count);
    return {text.data(), std::min(static_cast<std::size_t>(std::max<std::int64_t>(0, count)), text.size())};
}
[[nodiscard]] inline std::string_view rightOf(std::string_view text, std::int64_t count, bool isAscii) {
    if (!isAscii)
        return rightOf(text, count);
    const std::size_t size = std::min(static_cast<std::size_t>(std::max<std::int64_t>(0, count)), text.size());
    return {text.data() + (text.size() - size), size};
}
[[nodiscard]] inline std::string_view substringOf(std::string_view text, std::int64_t first, std::int64_t count,
                                                  bool isAscii) {
    if (!isAscii || first < 1)
        return substringOf(text, first, count);
    const std::size_t begin = std::min(static_cast<std::size_t>(first - 1), text.size());
    return text.substr(begin, static_cast<std::size_t>(std::max<std::int64_t>(0, count)));
}

/// Removes white space (the Unicode property White_Space) at one end.
[[nodiscard]] std::string_view trimLeft(std::string_view text);
[[nodiscard]] std::string_view trimRight(std::string_view text);

/// The position of the first occurrence of `part`, from 1; 0 when there is none. An empty part is at 1.
[[nodiscard]] std::int64_t positionOf(std::string_view text, std::string_view part);

/// Whether the text has a C0, DEL or C1 control character.
[[nodiscard]] bool hasControlCharacter(std::string_view text);
/// Whether the text is a number within the range of a real: sign, digits, decimal point, exponent; no blanks, no words.
[[nodiscard]] bool isNumberText(std::string_view text);

/// Below zero, zero or above, by code point, which is also the order of the bytes.
[[nodiscard]] inline int compareTexts(std::string_view left, std::string_view right) {
    return left.compare(right);
}

} // namespace tavix::expression
