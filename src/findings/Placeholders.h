#pragma once

#include <cstddef>
#include <iterator>
#include <string_view>

/// Texts that people and programs write where a value is unknown.
namespace tavix::findings {

/// False for nearly every other text.
[[nodiscard]] constexpr bool mayBePlaceholder(std::string_view text) {
    // For each length the first characters that a placeholder of it has, by the lower five bits, which ignore case.
    constexpr std::string_view kFirst[] = {"",    "-.?", "-.?n", "-.?nutf", "n#ta", "d", "(<tqf", "umn(", "n",
                                           "u(n", "",    "ul",   "",        "n",    "n", "",      "t"};
    if (text.empty() || text.size() >= std::size(kFirst))
        return false;
    const auto bits = [](char c) { return static_cast<unsigned char>(c) & 31U; };
    for (const char first : kFirst[text.size()])
        if (bits(first) == bits(text.front()))
            return true;
    return false;
}
/// Whether the text is such a word in lower case, in upper case or with a capital, or a sign such as "-".
[[nodiscard]] bool isPlaceholder(std::string_view text);
/// Whether the word is also an ordinary value, so that it is suspicious among numbers and dates alone.
[[nodiscard]] bool isOrdinaryWord(std::string_view text);
/// Whether somebody typed it to try a form out.
[[nodiscard]] bool isTestWord(std::string_view text);

} // namespace tavix::findings
