#pragma once

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace tavix::profiling {

/// Threads that do numbered tasks together with the one that made the pool. Only that one calls it.
class WorkerPool {
  public:
    /// `threads` counts the caller; with 1 nothing is started, and finish() does it all.
    explicit WorkerPool(unsigned threads);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    [[nodiscard]] unsigned threads() const { return static_cast<unsigned>(m_helpers.size()) + 1; }

    /// Lets the helpers begin: task(i) is called once for every i below `count`, by any thread. Between start() and
    /// finish() the caller may do something else that the tasks do not touch.
    void start(std::size_t count, std::function<void(std::size_t)> task);
    /// Takes part, and returns when every task is done. An exception of a task comes out here; the tasks that had not
    /// begun are then left out. `poll` is called some twenty times a second when there is nothing left but to wait.
    void finish(const std::function<void()>& poll = {});

  private:
    void help();
    void work();

    std::vector<std::thread> m_helpers;
    std::mutex m_mutex;
    std::condition_variable m_begun;
    std::condition_variable m_done;
    std::function<void(std::size_t)> m_task;
    std::size_t m_count = 0;
    std::atomic<std::size_t> m_next{0};
    std::size_t m_working = 0;    ///< helpers
    std::size_t m_generation = 0; ///< of tasks
    bool m_quits = false;
    std::exception_ptr m_exception;
};

} // namespace tavix::profiling
