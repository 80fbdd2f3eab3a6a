#pragma once

#include <unicode/utf8.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavix::pattern {

/// The character that begins at `at` (within the text), which moves behind it. Negative, moving by one byte, where
/// there is no well-formed UTF-8.
inline std::int32_t nextCharacter(std::string_view text, std::size_t& at) {
    auto next = static_cast<std::int64_t>(at);
    UChar32 character = 0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion" // inside the macro
    U8_NEXT(text.data(), next, static_cast<std::int64_t>(text.size()), character);
#pragma GCC diagnostic pop
    at = character < 0 ? at + 1 : static_cast<std::size_t>(next);
    return character;
}

} // namespace tavix::pattern
