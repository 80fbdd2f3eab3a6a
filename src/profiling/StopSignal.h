#pragma once

#include "base/Result.h"

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>
#include <future>
#include <thread>
#include <utility>

namespace tavix::profiling {

/// How often a thread that waits for others polls its StopSignal.
constexpr std::chrono::milliseconds kBetweenPolls{50};
/// Rows that a loop handles between two polls.
constexpr std::size_t kRowsBetweenPolls = 4096;

/// Whether the work shall end. Long steps ask some hundred times a second. On the thread that made the signal, asking
/// also reports progress to the watcher and takes its answer.
class StopSignal {
  public:
    /// `poll` is called only by the thread that makes the signal; false stops.
    explicit StopSignal(std::function<bool()> poll = {}) : m_poll(std::move(poll)) {}

    [[nodiscard]] bool isStopped() {
        if (m_poll && std::this_thread::get_id() == m_owner && !m_stopped && !m_poll())
            m_stopped = true;
        return m_stopped;
    }

    /// The error of steps that were stopped. Users never see it.
    [[nodiscard]] static Error stopped() { return Error{"stopped"}; }

  private:
    std::function<bool()> m_poll;
    std::thread::id m_owner = std::this_thread::get_id();
    std::atomic<bool> m_stopped{false};
};

/// Waits for a future and polls the signal meanwhile.
template <typename Future>
void waitFor(const Future& future, StopSignal& stop) {
    while (future.wait_for(kBetweenPolls) != std::future_status::ready)
        (void)stop.isStopped();
}

} // namespace tavix::profiling
