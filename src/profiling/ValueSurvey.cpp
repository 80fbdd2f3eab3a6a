#include "profiling/ValueSurvey.h"

#include "base/Characters.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace tavix::profiling {

namespace {

/// Integers of at most so many characters fit 64 bits.
constexpr std::size_t kSurely64 = 18;

/// The bytes that do not continue a character.
std::uint64_t codePoints(std::string_view text) {
    constexpr std::uint64_t kLowBits = 0x0101010101010101U;
    std::uint64_t count = text.size();
    std::size_t at = 0;
    for (; at + 8 <= text.size(); at += 8) {
        std::uint64_t word = 0;
        std::memcpy(&word, text.data() + at, sizeof word);
        count -= static_cast<std::uint64_t>(std::popcount((word >> 7) & ~(word >> 6) & kLowBits));
    }
    for (; at < text.size(); ++at)
        count -= (static_cast<unsigned char>(text[at]) & 0xC0U) == 0x80 ? 1 : 0;
    return count;
}

/// Whether a text of these kinds of bytes may be white space throughout.
bool mayBeBlank(ByteMask kinds) {
    using namespace byte_kind; // NOLINT(google-build-using-namespace)
    return (kinds & ~(kSpace | kDelimiter | kLineBreak | kControl | kBeyondAscii)) == 0;
}

} // namespace

void ValueSurvey::take(std::span<const Entry> values) {
    for (const Entry& entry : values) {
        const std::string_view text = entry.text();
        ++m_values;
        m_rows += entry.count;
        const ByteMask bytes = m_patterns.take(text, entry.count);
        const std::uint64_t length = (bytes & byte_kind::kBeyondAscii) == 0 ? text.size() : codePoints(text);
        m_shortest = std::min(m_shortest, length);
        m_longest = std::max(m_longest, length);
        m_lengths.add(length, entry.count);
        m_longestBytes = std::max(m_longestBytes, text.size());
        const bool isBlankText = mayBeBlank(bytes) && isBlank(text);
        if (text.empty())
            m_emptyRows += entry.count;
        else if (isBlankText)
            m_blankRows += entry.count;
        else
            takeKind(text, bytes, entry.count);
        m_detectors.take(text, bytes, entry.count, length, isBlankText);
    }
    m_patterns.flush();
}

void ValueSurvey::takeKind(std::string_view text, ByteMask bytes, std::uint64_t count) {
    const forms::ValueKind kind = forms::kindOf(text, bytes);
    m_forms.take(text, kind, bytes, count);
    m_kind = forms::joinedKind(m_kind, kind);
    if (m_kind == forms::ValueKind::Text)
        return;
    if (kind == forms::ValueKind::Real)
        m_decimalPlaces = std::max(m_decimalPlaces, forms::decimalPlaces(text));
    else if (kind == forms::ValueKind::Integer && text.size() > kSurely64 && !forms::integerValue(text))
        m_fits64 = false;
}

} // namespace tavix::profiling
