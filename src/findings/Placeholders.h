#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Texts that people and programs write where a value is unknown.
namespace tavix::findings {

/// For each length of a placeholder a bit for each first character, by its lower five bits, which ignore case.
inline constexpr auto kPlaceholderStarts = [] {
    constexpr std::array<std::string_view, 17> kFirst = {
        "", "-.?", "-.?n", "-.?nutf", "n#ta", "d", "(<tqf", "umn(", "n", "u(n", "", "ul", "", "n", "n", "", "t"};
    std::array<std::uint32_t, kFirst.size()> starts{};
    for (std::size_t length = 0; length < kFirst.size(); ++length)
        for (const char first : kFirst[length])
            starts[length] |= std::uint32_t{1} << (static_cast<unsigned char>(first) & 31U);
    return starts;
}();

/// False for nearly every other text.
[[nodiscard]] constexpr bool mayBePlaceholder(std::string_view text) {
    return !text.empty() && text.size() < kPlaceholderStarts.size() &&
           (kPlaceholderStarts[text.size()] >> (static_cast<unsigned char>(text.front()) & 31U) & 1U) != 0;
}
/// Whether the text is such a word in lower case, in upper case or with a capital, or a sign such as "-".
[[nodiscard]] bool isPlaceholder(std::string_view text);
/// Whether the word is also an ordinary value, so that it is suspicious among numbers and dates alone.
[[nodiscard]] bool isOrdinaryWord(std::string_view text);
/// Whether somebody typed it to try a form out.
[[nodiscard]] bool isTestWord(std::string_view text);

} // namespace tavix::findings
