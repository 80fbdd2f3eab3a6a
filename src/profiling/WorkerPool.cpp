#include "profiling/WorkerPool.h"

#include "profiling/StopSignal.h"

#include <utility>

namespace tavix::profiling {

WorkerPool::WorkerPool(unsigned threads) {
    for (unsigned i = 1; i < threads; ++i)
        m_helpers.emplace_back([this] { help(); });
}

WorkerPool::~WorkerPool() {
    {
        const std::lock_guard lock(m_mutex);
        if (m_batch)
            m_batch->cancel();
        m_quits = true;
    }
    m_begun.notify_all();
    for (std::thread& helper : m_helpers)
        helper.join();
}

void WorkerPool::start(std::size_t count, TaskBatch::Task task) {
    {
        const std::lock_guard lock(m_mutex);
        m_batch.emplace(count, std::move(task));
        ++m_generation;
    }
    m_begun.notify_all();
}

Status WorkerPool::finish(const std::function<void()>& poll) {
    m_batch->work();
    std::unique_lock lock(m_mutex);
    while (!m_done.wait_for(lock, kBetweenPolls, [this] { return m_working == 0; })) {
        lock.unlock();
        if (poll)
            poll();
        lock.lock();
    }
    // A helper that wakes only now finds no batch.
    TaskBatch& batch = *m_batch;
    struct Reset {
        std::optional<TaskBatch>& batch;
        ~Reset() { batch.reset(); }
    } const reset{m_batch};
    return batch.outcome();
}

void WorkerPool::help() {
    std::size_t seen = 0;
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_begun.wait(lock, [&] { return m_quits || (m_batch && m_generation != seen); });
        if (m_quits)
            return;
        seen = m_generation;
        TaskBatch& batch = *m_batch;
        ++m_working;
        lock.unlock();
        batch.work();
        lock.lock();
        if (--m_working == 0)
            m_done.notify_one();
    }
}

} // namespace tavix::profiling
