#pragma once

#include "base/Characters.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// What the functions over texts do to a single text. Counts and positions are in code points.
namespace tavix::expression {

/// Each character by its own simple mapping, so that the number of characters stays.
void appendLower(std::string& out, std::string_view text);
void appendUpper(std::string& out, std::string_view text);
[[nodiscard]] std::string lowerText(std::string_view text);
/// ASCII only, without a branch for each byte: the form for whole blocks.
void lowerAscii(const char* from, std::size_t size, char* to);
void upperAscii(const char* from, std::size_t size, char* to);

/// Negative counts are taken as 0.
[[nodiscard]] std::string_view leftOf(std::string_view text, std::int64_t count);
[[nodiscard]] std::string_view rightOf(std::string_view text, std::int64_t count);
/// From character `first` (counted from 1). What lies before the text takes its share of the count: from 0, three
/// characters are the first two.
[[nodiscard]] std::string_view substringOf(std::string_view text, std::int64_t first, std::int64_t count);

/// The same for texts that are ASCII throughout, or not.
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

/// White space (the Unicode property White_Space) at one end or both.
[[nodiscard]] std::string_view trimLeft(std::string_view text);
[[nodiscard]] std::string_view trimRight(std::string_view text);

/// Where `part` begins first, from 1; 0 when it does not occur. An empty part begins at 1.
[[nodiscard]] std::int64_t positionOf(std::string_view text, std::string_view part);

/// C0, DEL and C1.
[[nodiscard]] bool hasControlCharacter(std::string_view text);
/// Sign, digits, decimal point, exponent; no blanks, no words, and within the range of a real.
[[nodiscard]] bool isNumberText(std::string_view text);

/// Below zero, zero, above: by code point, which is the order of the bytes.
[[nodiscard]] inline int compareTexts(std::string_view left, std::string_view right) {
    return left.compare(right);
}

} // namespace tavix::expression
