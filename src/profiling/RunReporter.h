#pragma once

#include "profiling/JobRunner.h"

#include <chrono>
#include <cstddef>

namespace tavix::profiling {

/// Reports progress to the watcher, but not more often than it can show.
class RunReporter {
  public:
    RunReporter(ProgressWatcher* watcher, std::size_t tableCount) : m_watcher(watcher) {
        state.tableCount = tableCount;
    }

    /// False once the watcher has cancelled. `now`: without waiting for the interval.
    bool report(bool now = false) {
        const auto time = Timer::now();
        if (!m_watcher || m_isCancelled || (!now && time - m_last < std::chrono::milliseconds(100)))
            return !m_isCancelled;
        m_last = time;
        state.seconds = seconds();
        m_isCancelled = !m_watcher->progress(state);
        return !m_isCancelled;
    }
    [[nodiscard]] bool isCancelled() const { return m_isCancelled; }
    [[nodiscard]] double seconds() const { return std::chrono::duration<double>(Timer::now() - m_start).count(); }

    ProgressState state;

  private:
    using Timer = std::chrono::steady_clock;

    ProgressWatcher* m_watcher;
    Timer::time_point m_start = Timer::now();
    Timer::time_point m_last{};
    bool m_isCancelled = false;
};

} // namespace tavix::profiling
