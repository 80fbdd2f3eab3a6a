#pragma once

#include "base/Result.h"

#include <atomic>
#include <mutex>
#include <utility>

namespace tavix::profiling {

/// Which failure came first in work that several threads share.
class FirstFailure {
  public:
    /// Passes over success, and over whatever comes after the first failure.
    void keep(Status status) {
        if (status)
            return;
        const std::lock_guard lock(m_mutex);
        if (!m_hasFailed)
            m_outcome = std::move(status);
        m_hasFailed = true;
    }
    [[nodiscard]] bool hasFailed() const { return m_hasFailed; }
    /// Once no thread is at work any more.
    [[nodiscard]] Status outcome() const { return m_outcome; }

  private:
    std::atomic<bool> m_hasFailed = false;
    std::mutex m_mutex;
    Status m_outcome;
};

} // namespace tavix::profiling
