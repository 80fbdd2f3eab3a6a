#include "base/Characters.h"

#include <unicode/uchar.h>

#include <algorithm>
#include <cstring>

namespace tavix {

bool isAscii(std::string_view text) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    std::uint64_t seen = 0;
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + i, 8);
        seen |= word;
    }
    unsigned char last = 0;
    for (; i < text.size(); ++i)
        last = static_cast<unsigned char>(last | static_cast<unsigned char>(text[i]));
    return (seen & kHighBits) == 0 && last < 0x80;
}

bool isWhiteSpace(std::int32_t character) {
    return character >= 0 && u_isUWhiteSpace(character);
}

bool isBlank(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if ((byte > ' ' && byte < 0x7F) || !isWhiteSpace(nextCharacter(text, at)))
            return false;
    }
    return true;
}

void appendCharacter(std::string& out, std::int32_t character) {
    char bytes[4];
    std::int32_t size = 0;
    UBool isBad = false;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion" // inside the macro
    U8_APPEND(bytes, size, 4, character, isBad);
#pragma GCC diagnostic pop
    if (!isBad)
        out.append(bytes, static_cast<std::size_t>(size));
}

std::size_t countCharacters(std::string_view text) {
    std::size_t at = 0;
    while (at < text.size() && isAscii(text[at]))
        ++at;
    std::size_t count = at;
    for (; at < text.size(); ++count)
        nextCharacter(text, at);
    return count;
}

std::size_t offsetOfCharacter(std::string_view text, std::size_t index) {
    std::size_t at = 0;
    for (; index > 0 && at < text.size(); --index)
        nextCharacter(text, at);
    return at;
}

std::string_view cutToBytes(std::string_view text, std::size_t mostBytes) {
    if (text.size() <= mostBytes)
        return text;
    constexpr std::size_t kMostContinuing = 3;
    const std::size_t least = mostBytes - std::min(mostBytes, kMostContinuing);
    std::size_t end = mostBytes;
    while (end > least && (static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
        --end;
    return text.substr(0, end);
}

std::string shortened(std::string_view text, std::size_t mostBytes) {
    if (text.size() <= mostBytes)
        return std::string(text);
    return std::string(cutToBytes(text, mostBytes)) + "…";
}

} // namespace tavix
