#include "grid/CellOrder.h"

#include "base/NumberText.h"

#include <unicode/unistr.h>

#include <tuple>

namespace tavix {

namespace {

bool isAscii(std::string_view text) {
    for (const char c : text) {
        if (static_cast<unsigned char>(c) >= 0x80)
            return false;
    }
    return true;
}

std::string fold(std::string_view text) {
    std::string folded;
    if (isAscii(text)) {
        folded.reserve(text.size());
        for (const char c : text)
            folded += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
        return folded;
    }
    icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())))
        .foldCase()
        .toUTF8String(folded);
    return folded;
}

} // namespace

CellOrderKey::CellOrderKey(std::string_view text) : m_number(parseNumber(text)), m_text(text) {
    if (!m_number)
        m_folded = fold(text);
}

bool CellOrderKey::operator<(const CellOrderKey& other) const {
    if (m_number.has_value() != other.m_number.has_value())
        return m_number.has_value();
    if (m_number && *m_number != *other.m_number)
        return *m_number < *other.m_number;
    return std::tie(m_folded, m_text) < std::tie(other.m_folded, other.m_text);
}

} // namespace tavix
