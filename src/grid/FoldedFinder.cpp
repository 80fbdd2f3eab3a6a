#include "grid/FoldedFinder.h"

#include "base/Ascii.h"
#include "base/Characters.h"
#include "grid/FoldCase.h"

#include <algorithm>
#include <cstddef>

namespace tavix {

namespace {

bool hasAsciiFolding(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::int32_t character = nextCharacter(text, at);
        if (foldsToAscii(character))
            return true;
    }
    return false;
}

} // namespace

bool foldsToAscii(std::int32_t character) {
    const auto isBetween = [character](std::int32_t first, std::int32_t last) {
        return character >= first && character <= last;
    };
    if (character < 0x1E96)
        return character == 0xDF || character == 0x130 || character == 0x149 || character == 0x17F ||
               character == 0x1F0;
    return isBetween(0x1E96, 0x1E9A) || character == 0x1E9E || character == 0x212A || isBetween(0xFB00, 0xFB06);
}

FoldedFinder::FoldedFinder(std::string_view wanted) : m_wanted(foldCase(wanted)), m_isAscii(isAscii(m_wanted)) {}

bool FoldedFinder::isIn(std::string_view text) const {
    if (m_wanted.empty() || (m_isAscii && isInAscii(text)))
        return true;
    if (isAscii(text) || (m_isAscii && !hasAsciiFolding(text)))
        return false;
    return foldCase(text).find(m_wanted) != std::string::npos;
}

bool FoldedFinder::isInAscii(std::string_view text) const {
    return std::search(text.begin(), text.end(), m_wanted.begin(), m_wanted.end(),
                       [](char a, char b) { return asciiLower(a) == b; }) != text.end();
}

} // namespace tavix
