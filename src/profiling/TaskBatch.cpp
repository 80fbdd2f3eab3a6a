#include "profiling/TaskBatch.h"

#include <algorithm>
#include <future>
#include <utility>
#include <vector>

namespace tavix::profiling {

void TaskBatch::work() {
    for (std::size_t i = m_next++; i < m_count; i = m_next++) {
        try {
            if (Status status = m_task(i); !status)
                fail(std::move(status), nullptr);
        } catch (...) {
            fail({}, std::current_exception());
        }
    }
}

void TaskBatch::fail(Status status, std::exception_ptr exception) {
    cancel();
    const std::lock_guard lock(m_mutex);
    if (std::exchange(m_hasFailed, true))
        return;
    m_failure = std::move(status);
    m_exception = std::move(exception);
}

Status TaskBatch::outcome() const {
    if (m_exception)
        std::rethrow_exception(m_exception);
    return m_failure;
}

Status runTogether(std::span<const std::function<Status()>> tasks, unsigned threads, StopSignal& stop) {
    TaskBatch batch(tasks.size(), [tasks](std::size_t i) { return tasks[i](); });
    std::vector<std::future<void>> helpers;
    for (std::size_t i = 1; i < std::min<std::size_t>(threads, tasks.size()); ++i)
        helpers.push_back(std::async(std::launch::async, [&batch] { batch.work(); }));
    batch.work();
    for (std::future<void>& helper : helpers) {
        waitFor(helper, stop);
        helper.get();
    }
    return batch.outcome();
}

} // namespace tavix::profiling
