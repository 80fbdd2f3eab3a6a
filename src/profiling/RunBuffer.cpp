#include "profiling/RunBuffer.h"

#include "base/FreeMemory.h"
#include "profiling/LargeIntegers.h"

namespace tavix::profiling {

namespace {

constexpr std::size_t kPerRecord = sizeof(Entry) + 2 * sizeof(Keyed);

} // namespace

Status RunBuffer::add(const RunRecord& record) {
    const std::size_t size = (m_rows.size() + 1) * kPerRecord + m_textBytes + record.text.size();
    if (size > m_memory && !m_rows.empty())
        if (Status status = spill(); !status)
            return status;
    const auto index = static_cast<std::uint32_t>(m_rows.size());
    m_entries.add({m_texts.keep(record.text), record.count, static_cast<std::uint32_t>(record.text.size()), 0});
    m_rows.push_back({record.key, index, 0});
    m_textBytes += record.text.size();
    return {};
}

Status RunBuffer::spill() {
    if (m_rows.empty())
        return {};
    sortByKey(m_rows, m_spare, m_stop);
    if (m_order == RunOrder::KeyInteger)
        orderLargeIntegers(m_rows, m_entries);
    RunOutput output(m_file);
    for (std::size_t i = 0; i < m_rows.size(); ++i) {
        if (i % kRowsBetweenPolls == 0 && m_stop.isStopped())
            return StopSignal::stopped();
        const Entry& entry = m_entries[m_rows[i].index];
        if (Status status = output.add({m_rows[i].key, entry.count, entry.text()}); !status)
            return status;
    }
    auto run = output.finish();
    if (!run)
        return run.error();
    m_entries = {};
    m_rows.clear();
    m_texts.clear();
    m_textBytes = 0;
    return m_runs.add(m_file, std::move(*run));
}

Result<const RunSet*> RunBuffer::finish() {
    if (Status status = spill(); !status)
        return status.error();
    m_entries = {};
    freeMemory(m_rows);
    freeMemory(m_spare);
    return static_cast<const RunSet*>(&m_runs);
}

} // namespace tavix::profiling
