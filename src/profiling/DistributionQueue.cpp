#include "profiling/DistributionQueue.h"

namespace tavix::profiling {

void DistributionQueue::put(int table, FieldProfile& field) {
    field.packed->mayGoOn = [&stop = m_stop] { return !stop.isStopped(); };
    const std::lock_guard lock(m_mutex);
    m_waiting.push_back({table, &field});
}

Status DistributionQueue::store() {
    std::unique_lock lock(m_mutex);
    if (m_isStoring)
        return {};
    m_isStoring = true;
    while (!m_waiting.empty() && !m_failure) {
        const Waiting next = m_waiting.front();
        m_waiting.pop_front();
        lock.unlock();
        Status status = m_writer.addDistributions(next.table, next.field->facts.name, *next.field->packed);
        lock.lock();
        if (!status)
            m_failure = status.error();
    }
    m_isStoring = false;
    return m_failure ? Status{*m_failure} : Status{};
}

} // namespace tavix::profiling
