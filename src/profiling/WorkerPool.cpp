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
        m_next = m_count;
        m_quits = true;
    }
    m_begun.notify_all();
    for (std::thread& helper : m_helpers)
        helper.join();
}

void WorkerPool::start(std::size_t count, std::function<void(std::size_t)> task) {
    {
        const std::lock_guard lock(m_mutex);
        m_task = std::move(task);
        m_count = count;
        m_next = 0;
        ++m_generation;
    }
    m_begun.notify_all();
}

void WorkerPool::finish(const std::function<void()>& poll) {
    work();
    std::unique_lock lock(m_mutex);
    while (!m_done.wait_for(lock, kBetweenPolls, [this] { return m_working == 0; })) {
        lock.unlock();
        if (poll)
            poll();
        lock.lock();
    }
    // A helper that wakes only now stays out, and so touches nothing that the next start() changes.
    m_count = 0;
    if (m_exception)
        std::rethrow_exception(std::exchange(m_exception, nullptr));
}

void WorkerPool::work() {
    for (;;) {
        const std::size_t i = m_next.fetch_add(1);
        if (i >= m_count)
            return;
        try {
            m_task(i);
        } catch (...) {
            const std::lock_guard lock(m_mutex);
            if (!m_exception)
                m_exception = std::current_exception();
            m_next = m_count;
        }
    }
}

void WorkerPool::help() {
    std::size_t seen = 0;
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_begun.wait(lock, [&] { return m_quits || (m_count > 0 && m_generation != seen); });
        if (m_quits)
            return;
        seen = m_generation;
        ++m_working;
        lock.unlock();
        work();
        lock.lock();
        if (--m_working == 0)
            m_done.notify_one();
    }
}

} // namespace tavix::profiling
