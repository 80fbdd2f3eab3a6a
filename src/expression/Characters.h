#pragma once

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// Texts as sequences of code points. A byte that belongs to no well-formed character counts as one by itself.
namespace tavix::expression {

[[nodiscard]] inline bool isAscii(char c) {
    return static_cast<unsigned char>(c) < 0x80;
}

/// Whether all bytes are below 0x80.
[[nodiscard]] bool isAscii(std::string_view text);

/// The character that begins at `at` (within the text), which moves behind it. Negative, moving by one byte, where
/// there is no well-formed UTF-8.
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

void appendCharacter(std::string& out, std::int32_t character);

[[nodiscard]] std::size_t countCharacters(std::string_view text);
/// The byte at which character number `index` (from 0) begins; the text's size when it has no more than `index`.
[[nodiscard]] std::size_t offsetOfCharacter(std::string_view text, std::size_t index);

} // namespace tavix::expression
