#include "profiling/ValueWalk.h"

#include <algorithm>

namespace tavix::profiling {

namespace {

constexpr std::size_t kRowsAtOnce = 1024;
constexpr std::size_t kTextAtOnce = std::size_t{256} << 10;

} // namespace

Status EntryWalk::rewind() {
    m_first = 0;
    m_rows.clear();
    return {};
}

Result<std::span<const ValueWalk::Row>> EntryWalk::next() {
    m_first += m_rows.size();
    m_rows.resize(std::min(kRowsAtOnce, m_order.size() - m_first));
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        const Keyed& keyed = m_order[m_first + i];
        m_rows[i] = {keyed.key, keyed.countIn(m_entries)};
    }
    return std::span<const Row>(m_rows);
}

Status RunWalk::rewind() {
    m_merge.emplace(m_runs.merge(m_file, m_memory));
    return {};
}

Result<std::span<const ValueWalk::Row>> RunWalk::next() {
    m_rows.clear();
    m_texts.clear();
    m_ends.clear();
    while (m_rows.size() < kRowsAtOnce && m_texts.size() < kTextAtOnce) {
        const auto more = m_merge->next();
        if (!more)
            return more.error();
        if (!*more)
            break;
        const RunRecord& record = m_merge->record();
        m_rows.push_back({record.key, record.count});
        m_texts += record.text;
        m_ends.push_back(m_texts.size());
    }
    return std::span<const Row>(m_rows);
}

} // namespace tavix::profiling
