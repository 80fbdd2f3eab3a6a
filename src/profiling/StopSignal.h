#pragma once

#include "base/Result.h"

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <utility>

namespace tavix::profiling {

/// While a thread waits for others it asks its StopSignal so often, for nobody else may.
constexpr std::chrono::milliseconds kBetweenPolls{50};

/// Whether the work shall end. Long steps ask some hundred times a second; the thread that made the signal also tells
/// its watcher then how far things are, and learns from it whether to stop.
class StopSignal {
  public:
    /// `poll` is called by the thread that makes the signal only; false stops.
    explicit StopSignal(std::function<bool()> poll = {}) : m_poll(std::move(poll)) {}

    [[nodiscard]] bool isStopped() {
        if (m_poll && std::this_thread::get_id() == m_owner && !m_stopped && !m_poll())
            m_stopped = true;
        return m_stopped;
    }
    void stop() { m_stopped = true; }

    /// What steps return that were stopped; nobody is shown it.
    [[nodiscard]] static Error stopped() { return Error{"stopped"}; }

  private:
    std::function<bool()> m_poll;
    std::thread::id m_owner = std::this_thread::get_id();
    std::atomic<bool> m_stopped{false};
};

} // namespace tavix::profiling
