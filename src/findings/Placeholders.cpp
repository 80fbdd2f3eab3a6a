#include "findings/Placeholders.h"

#include "base/Ascii.h"

#include <algorithm>
#include <array>

namespace tavix::findings {

namespace {

constexpr std::array<std::string_view, 39> kWords = {"-",
                                                     "--",
                                                     "---",
                                                     ".",
                                                     "..",
                                                     "...",
                                                     "?",
                                                     "??",
                                                     "???",
                                                     "n/a",
                                                     "n.a.",
                                                     "n.a",
                                                     "n/k",
                                                     "#n/a",
                                                     "null",
                                                     "(null)",
                                                     "<null>",
                                                     "nan",
                                                     "undefined",
                                                     "unknown",
                                                     "unk",
                                                     "unspecified",
                                                     "missing",
                                                     "(missing)",
                                                     "not available",
                                                     "not applicable",
                                                     "not known",
                                                     "not specified",
                                                     "no data",
                                                     "(blank)",
                                                     "(empty)",
                                                     "tbd",
                                                     "tba",
                                                     "t.b.d.",
                                                     "to be determined",
                                                     "none",
                                                     "na",
                                                     "nil",
                                                     "no value"};
constexpr std::array<std::string_view, 3> kOrdinary = {"none", "na", "nil"};
constexpr std::array<std::string_view, 7> kTests = {"test", "asdf", "qwerty", "foo", "foobar", "dummy", "lorem ipsum"};

static_assert(std::all_of(kWords.begin(), kWords.end(), mayBePlaceholder));
static_assert(std::all_of(kTests.begin(), kTests.end(), mayBePlaceholder));

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

} // namespace

bool isPlaceholder(std::string_view text) {
    return !text.empty() && (isAmong(text, kWords) || isAmong(text, kTests));
}

bool isOrdinaryWord(std::string_view text) {
    return isAmong(text, kOrdinary);
}

bool isTestWord(std::string_view text) {
    return isAmong(text, kTests);
}

} // namespace tavix::findings
