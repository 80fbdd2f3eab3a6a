#pragma once

#include "base/Result.h"
#include "profiling/TaskBatch.h"

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

namespace tavix::profiling {

/// Threads that run batches of tasks together with the thread that made the pool. Only that thread calls it.
class WorkerPool {
  public:
    /// `threads` includes the caller; with 1 no thread is started and finish() runs everything.
    explicit WorkerPool(unsigned threads);
    ~WorkerPool();
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;

    [[nodiscard]] unsigned threads() const { return static_cast<unsigned>(m_helpers.size()) + 1; }

    /// Lets the helpers begin a batch of `count` tasks. Until finish() the caller may do anything that does not touch
    /// what the tasks use.
    void start(std::size_t count, TaskBatch::Task task);
    /// Takes part and returns the outcome of the batch, or rethrows its exception, when no task runs any more. `poll`
    /// is called about twenty times a second while the caller only waits.
    [[nodiscard]] Status finish(const std::function<void()>& poll = {});

  private:
    void help();

    std::vector<std::thread> m_helpers;
    std::mutex m_mutex;
    std::condition_variable m_begun;
    std::condition_variable m_done;
    std::optional<TaskBatch> m_batch;
    std::size_t m_working = 0;    ///< helpers in the batch
    std::size_t m_generation = 0; ///< of batches
    bool m_quits = false;
};

} // namespace tavix::profiling
