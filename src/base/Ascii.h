#pragma once

#include <algorithm>
#include <string>
#include <string_view>

/// Digits and letters of ASCII, whatever the locale. All other bytes are neither and have no case.
namespace tavix {

[[nodiscard]] constexpr bool isAsciiDigit(char c) {
    return c >= '0' && c <= '9';
}

[[nodiscard]] constexpr bool isAsciiLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

[[nodiscard]] constexpr char asciiLower(char c) {
    return static_cast<char>(c + (static_cast<unsigned char>(c - 'A') < 26 ? 32 : 0));
}

[[nodiscard]] constexpr char asciiUpper(char c) {
    return static_cast<char>(c - (static_cast<unsigned char>(c - 'a') < 26 ? 32 : 0));
}

[[nodiscard]] inline std::string asciiLower(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char c) { return asciiLower(c); });
    return lower;
}

[[nodiscard]] inline std::string asciiUpper(std::string_view text) {
    std::string upper(text);
    std::transform(upper.begin(), upper.end(), upper.begin(), [](char c) { return asciiUpper(c); });
    return upper;
}

[[nodiscard]] inline bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char left, char right) { return asciiLower(left) == asciiLower(right); });
}

} // namespace tavix
