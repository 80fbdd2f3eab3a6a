#include "filter/Characters.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <cstdint>

namespace tavix {

namespace {

/// Calls visit(character, its bytes) for one after the other; the character is U_SENTINEL for a byte that is none.
template <typename Visit>
void forEachCharacter(std::string_view text, Visit visit) {
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::size_t at = 0;
    while (at < text.size()) {
        const std::size_t start = at;
        UChar32 character = 0;
        U8_NEXT(bytes, at, text.size(), character);
        if (character < 0)
            at = start + 1;
        visit(character < 0 ? U_SENTINEL : character, text.substr(start, at - start));
    }
}

void append(std::string& text, UChar32 character) {
    char bytes[U8_MAX_LENGTH] = {};
    std::size_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, character);
    text.append(bytes, length);
}

} // namespace

std::size_t CharacterCount(std::string_view text) {
    std::size_t count = 0;
    forEachCharacter(text, [&](UChar32, std::string_view) { ++count; });
    return count;
}

std::string LowerText(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    forEachCharacter(text, [&](UChar32 character, std::string_view bytes) {
        if (character < 0)
            result.append(bytes);
        else
            append(result, u_tolower(character));
    });
    return result;
}

std::string_view WithoutEnds(std::string_view text) {
    std::size_t first = 0;
    std::size_t last = 0;
    std::size_t end = 0;
    forEachCharacter(text, [&](UChar32, std::string_view bytes) {
        if (first == 0)
            first = bytes.size();
        last = end;
        end += bytes.size();
    });
    return last > first ? text.substr(first, last - first) : std::string_view();
}

std::string RepairedText(std::string_view text) {
    constexpr UChar32 kReplacement = 0xFFFD;
    std::string result;
    result.reserve(text.size());
    forEachCharacter(text, [&](UChar32 character, std::string_view bytes) {
        if (character < 0)
            append(result, kReplacement);
        else
            result.append(bytes);
    });
    return result;
}

} // namespace tavix
