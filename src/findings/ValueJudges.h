#pragma once

#include "base/Ascii.h"
#include "base/Characters.h"
#include "findings/ValueTests.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

/// The decisions of each value test that need no condition. Inline, because every distinct value of a run passes here.
namespace tavix::findings::judge {

using namespace byte_kind; // NOLINT(google-build-using-namespace): every function reads as a list of these

[[nodiscard]] constexpr Verdict maybe(bool may) {
    return may ? Verdict::Maybe : Verdict::No;
}
[[nodiscard]] constexpr Verdict surely(bool is) {
    return is ? Verdict::Yes : Verdict::No;
}

[[nodiscard]] inline Verdict blanksAtEnds(const Candidate& it) {
    const auto isLow = [](char c) { return static_cast<unsigned char>(c) <= ' '; };
    return maybe(isLow(it.text.front()) || isLow(it.text.back()) || it.rare.space);
}
[[nodiscard]] inline Verdict blanksInside(const Candidate& it) {
    return maybe(it.has(kSpace) && it.text.find("  ") != std::string_view::npos);
}
[[nodiscard]] inline Verdict lineBreaks(const Candidate& it) {
    return surely(it.has(kLineBreak));
}
[[nodiscard]] inline Verdict controlCharacters(const Candidate& it) {
    return surely(it.has(kControl) || it.rare.control);
}
[[nodiscard]] inline Verdict invisible(const Candidate& it) {
    return surely(it.rare.invisible);
}
[[nodiscard]] inline Verdict unusualSpaces(const Candidate& it) {
    return surely(it.rare.unusualSpace);
}
[[nodiscard]] inline Verdict replacements(const Candidate& it) {
    return surely(it.rare.replacement);
}
[[nodiscard]] inline Verdict misdecoded(const Candidate& it) {
    return maybe(it.rare.misdecoded);
}
[[nodiscard]] inline Verdict lostCharacters(const Candidate& it) {
    return maybe(it.has(kQuestion) && !it.has(kSlash | kEquals | kAmpersand) && it.has(kLetters | kBeyondAscii));
}
[[nodiscard]] inline Verdict decomposed(const Candidate& it) {
    return surely(it.rare.mark);
}
[[nodiscard]] inline Verdict mixedScripts(const Candidate& it) {
    return maybe(it.rare.cyrillic && it.has(kLetters));
}
[[nodiscard]] inline Verdict markup(const Candidate& it) {
    return maybe(it.has(kAmpersand | kLess));
}
[[nodiscard]] inline Verdict escapes(const Candidate& it) {
    return maybe(it.has(kBackslash));
}
[[nodiscard]] inline Verdict quoted(const Candidate& it) {
    const char first = it.text.front();
    return surely(it.text.size() > 1 && (first == '"' || first == '\'') && it.text.back() == first);
}
[[nodiscard]] inline Verdict delimiters(const Candidate& it) {
    return surely(it.has(kDelimiter));
}
[[nodiscard]] inline Verdict structured(const Candidate& it) {
    const char first = it.text.front();
    return maybe(it.text.size() > 2 && (first == '{' || first == '[' || first == '<'));
}
[[nodiscard]] inline Verdict leftOver(const Candidate& it) {
    return surely(it.text.size() > 1 && (it.text.back() == ',' || it.text.back() == ';'));
}
[[nodiscard]] inline Verdict spreadsheetError(const Candidate& it) {
    return maybe(it.text.front() == '#' && it.text.size() < 10);
}
[[nodiscard]] inline Verdict formula(const Candidate& it) {
    return maybe(it.text.front() == '=' && it.text.size() > 1);
}
[[nodiscard]] inline Verdict exponentForm(const Candidate& it) {
    return maybe(it.has(kPlus) && it.has(kDigit) && it.has(kLetters) && isAsciiDigit(it.text.back()));
}
[[nodiscard]] inline Verdict apostrophe(const Candidate& it) {
    return maybe(it.text.front() == '\'' && it.has(kDigit) && !it.has(kLetters));
}
[[nodiscard]] inline Verdict parentheses(const Candidate& it) {
    return maybe(it.text.front() == '(' && it.text.back() == ')' && it.has(kDigit) && !it.has(kLetters));
}
[[nodiscard]] inline Verdict minusAfter(const Candidate& it) {
    return maybe(it.text.back() == '-' && isAsciiDigit(it.text.front()) && !it.has(kLetters | kSpace));
}
[[nodiscard]] inline Verdict numberWithUnit(const Candidate& it) {
    constexpr std::size_t kLongestUnit = 5; // " mins"
    const char first = it.text.front();
    if (!it.has(kDigit))
        return Verdict::No;
    if (!isAsciiDigit(first) && first != '-' && first != '+')
        return maybe(first == '$' || !isAscii(first));
    if (isAsciiDigit(it.text.back()) || !it.has(kLetters | kMoney | kBeyondAscii))
        return Verdict::No;
    std::size_t number = 1;
    while (number < it.text.size() &&
           (isAsciiDigit(it.text[number]) || it.text[number] == '.' || it.text[number] == ','))
        ++number;
    return maybe(it.text.size() - number <= kLongestUnit);
}
[[nodiscard]] inline Verdict zeroPadded(const Candidate& it) {
    return surely(it.mask == kDigit && it.text.size() > 1 && it.text.front() == '0');
}
[[nodiscard]] inline Verdict digitsOnly(const Candidate& it) {
    return surely(it.mask == kDigit);
}
[[nodiscard]] inline Verdict runOfOne(const Candidate& it) {
    if (isAscii(it.text.front()))
        return maybe(it.text.size() > 2 && it.text[0] == it.text[1] && it.text[1] == it.text[2]);
    std::size_t at = 0;
    (void)nextCharacter(it.text, at);
    return maybe(it.text.size() > 2 * at && it.text.substr(0, at) == it.text.substr(at, at));
}
[[nodiscard]] inline Verdict notUpperCase(const Candidate& it) {
    return it.has(kLower) ? Verdict::Yes : maybe(it.has(kBeyondAscii));
}
[[nodiscard]] inline Verdict eMail(const Candidate& it) {
    const std::size_t at = it.has(kAt) && it.has(kDot) ? it.text.find('@') : std::string_view::npos;
    if (at == std::string_view::npos || at == 0)
        return Verdict::No;
    const auto isInLabel = [](char c) { return isAsciiDigit(c) || isAsciiLetter(c) || c == '-'; };
    const auto isInName = [&](char c) { return isInLabel(c) || c == '.' || c == '_' || c == '%' || c == '+'; };
    const std::string_view host = it.text.substr(at + 1);
    const std::size_t lastDot = host.rfind('.');
    if (lastDot == std::string_view::npos || lastDot == 0 || host.front() == '.' ||
        host.find("..") != std::string_view::npos)
        return Verdict::No;
    const std::string_view top = host.substr(lastDot + 1);
    // Nearly all addresses have no other characters than these, and then only a second @ could be wrong.
    if (it.hasOnly(kLetters | kDigit | kDot | kHyphen | kAt))
        return surely(top.size() >= 2 && top.size() <= 24 && std::all_of(top.begin(), top.end(), isAsciiLetter) &&
                      host.find('@') == std::string_view::npos);
    return surely(top.size() >= 2 && top.size() <= 24 && std::all_of(top.begin(), top.end(), isAsciiLetter) &&
                  std::all_of(host.begin(), host.end(), [&](char c) { return isInLabel(c) || c == '.'; }) &&
                  std::all_of(it.text.begin(), it.text.begin() + static_cast<std::ptrdiff_t>(at), isInName));
}
/// Whether the text is written like `form`, in which 9 is any digit and - a hyphen, point or blank.
[[nodiscard]] inline bool isLike(std::string_view text, std::string_view form) {
    return std::equal(text.begin(), text.end(), form.begin(), form.end(), [](char c, char wanted) {
        return wanted == '9' ? isAsciiDigit(c) : c == wanted || (wanted == '-' && (c == '.' || c == ' '));
    });
}
[[nodiscard]] inline Verdict phone(const Candidate& it) {
    constexpr std::size_t kLeast = 9;
    const std::string_view text = it.text;
    if (text.size() < kLeast || text.size() > 21 ||
        !it.hasOnly(kDigit | kSpace | kDot | kHyphen | kSlash | kPlus | kParenthesis | kOther))
        return Verdict::No;
    if (text.front() != '+')
        return surely(isLike(text, "999-999-9999") || isLike(text, "(999) 999-9999") || isLike(text, "(999)999-9999"));
    const auto isInside = [](char c) {
        return isAsciiDigit(c) || c == ' ' || c == '(' || c == ')' || c == '.' || c == '/' || c == '-';
    };
    return surely(isAsciiDigit(text[1]) && isAsciiDigit(text.back()) &&
                  std::all_of(text.begin() + 1, text.end(), isInside));
}
[[nodiscard]] inline Verdict url(const Candidate& it) {
    return maybe(it.has(kLetters) && (it.has(kSlash) ? it.has(kColon) || it.has(kDot) : it.has(kDot)) &&
                 !it.has(kSpace) && it.text.size() > 6 &&
                 (asciiLower(it.text[0]) == 'h' || asciiLower(it.text[0]) == 'f' || asciiLower(it.text[0]) == 'w'));
}
[[nodiscard]] inline Verdict ipAddress(const Candidate& it) {
    if (it.text.size() < 7 || it.text.size() > 39)
        return Verdict::No;
    if (it.hasOnly(kDigit | kDot)) {
        constexpr std::size_t kLastPart = 4; // .255
        const auto pointsIn = [](std::string_view text) { return std::count(text.begin(), text.end(), '.'); };
        return maybe(it.text.size() <= 15 && pointsIn(it.text.substr(it.text.size() - kLastPart)) > 0 &&
                     pointsIn(it.text) == 3);
    }
    return maybe(it.hasOnly(kDigit | kLetters | kColon) && std::count(it.text.begin(), it.text.end(), ':') == 7);
}
[[nodiscard]] inline Verdict cardNumber(const Candidate& it) {
    return maybe(it.text.size() > 14 && it.text.size() < 20 && it.text.front() >= '2' && it.text.front() <= '6' &&
                 it.hasOnly(kDigit | kSpace | kHyphen));
}
[[nodiscard]] inline Verdict iban(const Candidate& it) {
    return maybe(it.text.size() > 14 && it.text.size() < 45 && it.hasOnly(kDigit | kUpper | kSpace) &&
                 isAsciiLetter(it.text[0]) && isAsciiDigit(it.text[2]) && isAsciiDigit(it.text[3]));
}
[[nodiscard]] inline Verdict nationalId(const Candidate& it) {
    if (it.text.size() == 11 && it.text[3] == '-' && it.text[6] == '-')
        return maybe(it.mask == (kDigit | kHyphen));
    return maybe(it.text.size() > 8 && it.text.size() < 14 && it.hasOnly(kDigit | kUpper | kSpace) &&
                 isAsciiLetter(it.text[1]) && isAsciiLetter(it.text.back()) && it.has(kDigit));
}
[[nodiscard]] inline Verdict streetAddress(const Candidate& it) {
    return maybe(it.has(kDigit) && it.has(kSpace) && it.has(kLetters) && it.text.size() < 400 &&
                 isAsciiDigit(it.text.front()));
}

} // namespace tavix::findings::judge
