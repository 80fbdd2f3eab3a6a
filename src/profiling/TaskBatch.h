#pragma once

#include "base/Result.h"
#include "profiling/StopSignal.h"

#include <atomic>
#include <cstddef>
#include <exception>
#include <functional>
#include <mutex>
#include <span>

namespace tavix::profiling {

/// Numbered tasks that several threads run, each taking the next one. After the first failure or exception no further
/// task begins.
class TaskBatch {
  public:
    using Task = std::function<Status(std::size_t)>;

    /// Runs task(i) for every i below `count`.
    TaskBatch(std::size_t count, Task task) : m_count(count), m_task(std::move(task)) {}

    /// Runs tasks until none is left to begin. Every thread that takes part calls it.
    void work();
    /// Lets no further task begin.
    void cancel() { m_next = m_count; }
    /// The first failure, or success; rethrows an exception that came first. Call it once all threads have returned
    /// from work().
    [[nodiscard]] Status outcome() const;

  private:
    void fail(Status status, std::exception_ptr exception);

    std::size_t m_count;
    Task m_task;
    std::atomic<std::size_t> m_next{0};
    std::mutex m_mutex; ///< guards the members below
    bool m_hasFailed = false;
    Status m_failure;
    std::exception_ptr m_exception;
};

/// Runs independent tasks by up to `threads` threads, the caller among them, and returns the first failure. The tasks
/// must heed `stop` themselves; the caller polls it while it waits for the other threads.
[[nodiscard]] Status runTogether(std::span<const std::function<Status()>> tasks, unsigned threads, StopSignal& stop);

} // namespace tavix::profiling
