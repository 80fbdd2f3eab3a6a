#pragma once

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// UTF-8 text as a sequence of characters (code points). A byte that is not part of a well-formed character counts as a
/// character of its own, whether texts are counted, cut, compared or displayed: a cut text keeps its bytes, and an
/// invalid byte does not affect its neighbours.
namespace tavix {

[[nodiscard]] inline bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// Whether all bytes are below 0x80.
[[nodiscard]] bool isAscii(std::string_view text);

/// Decodes the character at `at` (within the text) and moves `at` past it. Negative, moving by one byte, for invalid
/// UTF-8.
inline std::int32_t nextCharacter(std::string_view text, std::size_t& at) {
    if (isAscii(text[at]))
        return text[at++];
    auto next = static_cast<std::int64_t>(at);
    UChar32 character = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion" // inside the macro
    U8_NEXT(text.data(), next, static_cast<std::int64_t>(text.size()), character);
#pragma GCC diagnostic pop
    at = character < 0 ? at + 1 : static_cast<std::size_t>(next);
    return character;
}

/// Calls visit(character, its bytes) for each character in turn; the character is negative for an invalid byte.
template <typename Visit>
void forEachCharacter(std::string_view text, Visit visit) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const std::int32_t character = nextCharacter(text, at);
        visit(character, text.substr(start, at - start));
    }
}

/// Unicode's White_Space; false for a negative number.
[[nodiscard]] bool isWhiteSpace(std::int32_t character);
/// White space throughout, or empty.
[[nodiscard]] bool isBlank(std::string_view text);

/// Writes the one to four bytes of a code point and returns their end.
inline char* putCharacter(char* to, std::int32_t codePoint) {
    std::size_t size = 0;
    U8_APPEND_UNSAFE(to, size, codePoint);
    return to + size;
}

/// Appends nothing for an invalid code point or a surrogate.
void appendCharacter(std::string& out, std::int32_t character);

[[nodiscard]] std::size_t countCharacters(std::string_view text);
/// The byte offset of the character at `index`, which counts from 0; the size of a text that is shorter than that.
[[nodiscard]] std::size_t offsetOfCharacter(std::string_view text, std::size_t index);

/// The first `mostBytes` of `text`, or up to three bytes less so as not to cut a character.
[[nodiscard]] std::string_view cutToBytes(std::string_view text, std::size_t mostBytes);
/// `text` if it has at most `mostBytes`; else its beginning and "…".
[[nodiscard]] std::string shortened(std::string_view text, std::size_t mostBytes);

} // namespace tavix
