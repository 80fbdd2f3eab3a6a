#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Which kinds of bytes a text has, so that costly tests are made of few texts.
namespace tavix {

using ByteMask = std::uint32_t;

namespace byte_kind {

inline constexpr ByteMask kLower = 1U << 0;
inline constexpr ByteMask kUpper = 1U << 1;
inline constexpr ByteMask kDigit = 1U << 2;
inline constexpr ByteMask kSpace = 1U << 3; ///< U+0020 alone
inline constexpr ByteMask kDot = 1U << 4;
inline constexpr ByteMask kHyphen = 1U << 5;
inline constexpr ByteMask kColon = 1U << 6;
inline constexpr ByteMask kSlash = 1U << 7;
inline constexpr ByteMask kComma = 1U << 8;
inline constexpr ByteMask kOther = 1U << 9; ///< that no test looks for
// Rare ones.
inline constexpr ByteMask kAt = 1U << 10;
inline constexpr ByteMask kQuote = 1U << 11; ///< " and '
inline constexpr ByteMask kAmpersand = 1U << 12;
inline constexpr ByteMask kLess = 1U << 13;
inline constexpr ByteMask kBackslash = 1U << 14;
inline constexpr ByteMask kDelimiter = 1U << 15; ///< | ; and tab
inline constexpr ByteMask kLineBreak = 1U << 16;
inline constexpr ByteMask kControl = 1U << 17; ///< the other control characters of ASCII
inline constexpr ByteMask kHash = 1U << 18;
inline constexpr ByteMask kEquals = 1U << 19;
inline constexpr ByteMask kParenthesis = 1U << 20; ///< the opening one
inline constexpr ByteMask kQuestion = 1U << 21;
inline constexpr ByteMask kMoney = 1U << 22; ///< $ and %
inline constexpr ByteMask kPlus = 1U << 23;
inline constexpr ByteMask kBracket = 1U << 24; ///< { and [
inline constexpr ByteMask kBeyondAscii = 1U << 25;

inline constexpr ByteMask kLetters = kLower | kUpper;
inline constexpr ByteMask kRare = ~(kAt - 1);

constexpr ByteMask ofByte(unsigned char c) {
    if (c >= 0x80)
        return kBeyondAscii;
    if (c >= 'a' && c <= 'z')
        return kLower;
    if (c >= 'A' && c <= 'Z')
        return kUpper;
    if (c >= '0' && c <= '9')
        return kDigit;
    switch (c) {
    case ' ':
        return kSpace;
    case '.':
        return kDot;
    case '-':
        return kHyphen;
    case ':':
        return kColon;
    case '/':
        return kSlash;
    case ',':
        return kComma;
    case '@':
        return kAt;
    case '"':
    case '\'':
        return kQuote;
    case '&':
        return kAmpersand;
    case '<':
        return kLess;
    case '\\':
        return kBackslash;
    case '|':
    case ';':
    case '\t':
        return kDelimiter;
    case '\n':
    case '\r':
        return kLineBreak;
    case '#':
        return kHash;
    case '=':
        return kEquals;
    case '(':
        return kParenthesis;
    case '?':
        return kQuestion;
    case '$':
    case '%':
        return kMoney;
    case '+':
        return kPlus;
    case '{':
    case '[':
        return kBracket;
    default:
        return c < 0x20 || c == 0x7F ? kControl : kOther;
    }
}

inline constexpr std::array<ByteMask, 256> kOfByte = [] {
    std::array<ByteMask, 256> table{};
    for (unsigned c = 0; c < table.size(); ++c)
        table[c] = ofByte(static_cast<unsigned char>(c));
    return table;
}();

} // namespace byte_kind

/// The kinds of all bytes of the text.
[[nodiscard]] inline ByteMask byteMask(std::string_view text) {
    const auto kindAt = [&](std::size_t at) { return byte_kind::kOfByte[static_cast<unsigned char>(text[at])]; };
    ByteMask even = 0; // two chains, so that the processor works on both at once
    ByteMask odd = 0;
    std::size_t at = 0;
    for (; at + 4 <= text.size(); at += 4) {
        even |= kindAt(at) | kindAt(at + 2);
        odd |= kindAt(at + 1) | kindAt(at + 3);
    }
    for (; at < text.size(); ++at)
        even |= kindAt(at);
    return even | odd;
}

} // namespace tavix
