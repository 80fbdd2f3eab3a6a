#include "worksheet/CellText.h"

#include "base/Characters.h"
#include "worksheet/Limits.h"

#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>

namespace tavix::worksheet {

namespace {

constexpr char16_t kReplacement = 0xFFFD;
/// From here on most characters are two digits wide.
constexpr char16_t kFirstWide = 0x2E80;
/// A unit takes at most three bytes of UTF-8, so this many bytes and the start of one more character suffice to fill a
/// cell and to know that the text is longer.
constexpr std::size_t kMaxBytesLooked = 3 * (kMaxTextLength + std::size_t{2});

template <typename View>
int longestLine(View text, int most) {
    int longest = 0;
    int line = 0;
    for (auto unit : text) {
        line += unit == '\n' ? -line : static_cast<char16_t>(unit) >= kFirstWide ? 2 : 1;
        longest = std::max(longest, line);
        if (longest >= most)
            return most;
    }
    return longest;
}

} // namespace

void CellText::assign(std::string_view utf8) {
    utf8 = cutToBytes(utf8, kMaxBytesLooked);
    if (!isAscii(utf8)) {
        assignUnicode(utf8);
        return;
    }
    m_wide = false;
    m_cut = utf8.size() > kMaxTextLength;
    m_narrow = utf8.substr(0, kMaxTextLength);
}

void CellText::assignUnicode(std::string_view utf8) {
    // No text has more units than bytes.
    m_buffer.resize(utf8.size());
    std::int32_t length = 0;
    UErrorCode status = U_ZERO_ERROR;
    u_strFromUTF8WithSub(m_buffer.data(), static_cast<std::int32_t>(m_buffer.size()), &length, utf8.data(),
                         static_cast<std::int32_t>(utf8.size()), kReplacement, nullptr, &status);
    m_units = std::u16string_view(m_buffer).substr(0, static_cast<std::size_t>(length));
    m_cut = m_units.size() > kMaxTextLength;
    if (m_cut) {
        m_units = m_units.substr(0, kMaxTextLength);
        if (U16_IS_LEAD(m_units.back()))
            m_units.remove_suffix(1);
    }
    m_wide = std::any_of(m_units.begin(), m_units.end(), [](char16_t unit) { return unit > 0xFF; });
    if (m_wide)
        return;
    m_bytes.clear();
    for (char16_t unit : m_units)
        m_bytes += static_cast<char>(unit);
    m_narrow = m_bytes;
}

bool CellText::hasLineBreak() const {
    return m_wide ? m_units.find(u'\n') != std::u16string_view::npos : m_narrow.find('\n') != std::string_view::npos;
}

int CellText::displayWidth(int most) const {
    return m_wide ? longestLine(m_units, most) : longestLine(m_narrow, most);
}

} // namespace tavix::worksheet
