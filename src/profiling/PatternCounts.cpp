#include "profiling/PatternCounts.h"

#include "pattern/CharacterPattern.h"

#include <algorithm>
#include <span>

namespace tavix::profiling {

ByteMask PatternCounts::take(std::string_view text, std::uint64_t count) {
    if (text.size() > m_text.size() - m_used || m_size == kMost) {
        flush();
        if (text.size() > m_text.size())
            m_text.resize(std::max(text.size(), kLeastText));
    }
    ByteMask kinds = 0;
    char* const begin = m_text.data() + m_used;
    const char* const end = pattern::putCharacterPattern(begin, text, kinds);
    const std::string_view pattern(begin, static_cast<std::size_t>(end - begin));
    if (m_size > 0 && m_waiting[m_size - 1].text() == pattern) {
        m_waiting[m_size - 1].count += count;
        ++m_values[m_size - 1];
        return kinds;
    }
    m_waiting[m_size] = {begin, count, static_cast<std::uint32_t>(pattern.size()), 0};
    m_values[m_size] = 1;
    m_used += pattern.size();
    ++m_size;
    return kinds;
}

void PatternCounts::flush() {
    m_counted.counter().add(std::span(m_waiting).first(m_size));
    for (std::size_t i = 0; i < m_size; ++i)
        m_detectors.takePattern(m_waiting[i].text(), {m_values[i], m_waiting[i].count});
    m_used = 0;
    m_size = 0;
}

} // namespace tavix::profiling
