#include "findings/Placeholders.h"

#include "base/Ascii.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace tavix::findings {

namespace {

constexpr std::array<std::string_view, 39> kWords = {
    "-",        "--",      "---",        ".",         "..",           "...",       "?",     "??",
    "???",      "n/a",     "n.a.",       "n.a",       "n/k",          "#n/a",      "null",  "(null)",
    "<null>",   "nan",     "undefined",  "unknown",   "unk",          "unspecified", "missing", "(missing)",
    "not available", "not applicable", "not known", "not specified", "no data", "(blank)", "(empty)", "tbd",
    "tba",      "t.b.d.",  "to be determined", "none", "na",          "nil",       "no value"};
constexpr std::array<std::string_view, 3> kOrdinary = {"none", "na", "nil"};
constexpr std::array<std::string_view, 7> kTests = {"test",   "asdf",   "qwerty", "foo",
                                                    "foobar", "dummy",  "lorem ipsum"};

constexpr std::size_t kLongest = 16;

/// For each length the first letters that a word of it has, in bits of the lower five bits of the letter.
constexpr std::array<std::uint32_t, kLongest + 1> kFirstLetters = [] {
    std::array<std::uint32_t, kLongest + 1> table{};
    const auto add = [&](std::string_view word) { table[word.size()] |= 1U << (static_cast<unsigned char>(word[0]) & 31U); };
    for (const std::string_view word : kWords)
        add(word);
    for (const std::string_view word : kTests)
        add(word);
    return table;
}();

bool hasUsualCase(std::string_view text) {
    const auto isLower = [](char c) { return c == asciiLower(c); };
    const auto isUpper = [](char c) { return c == asciiUpper(c); };
    const std::string_view rest = text.substr(1);
    return std::all_of(rest.begin(), rest.end(), isLower) || std::all_of(text.begin(), text.end(), isUpper);
}

template <typename Words>
bool isAmong(std::string_view text, const Words& words) {
    return std::any_of(words.begin(), words.end(),
                       [text](std::string_view word) { return equalsIgnoringAsciiCase(word, text); }) &&
           hasUsualCase(text);
}

bool mayBe(std::string_view text) {
    return text.size() <= kLongest && !text.empty() &&
           (kFirstLetters[text.size()] >> (static_cast<unsigned char>(text[0]) & 31U) & 1U) != 0;
}

} // namespace

bool isPlaceholder(std::string_view text) {
    return mayBe(text) && (isAmong(text, kWords) || isAmong(text, kTests));
}

bool isOrdinaryWord(std::string_view text) {
    return isAmong(text, kOrdinary);
}

bool isTestWord(std::string_view text) {
    return isAmong(text, kTests);
}

} // namespace tavix::findings
