#pragma once

#include "profiling/StopSignal.h"

#include <future>
#include <utility>

namespace tavix::profiling {

/// A result that one task makes and others wait for.
template <typename Made>
class TaskFuture {
  public:
    /// `make` returns a pointer to the result, which must outlive the future.
    template <typename Make>
    explicit TaskFuture(Make make) : m_task(std::move(make)), m_made(m_task.get_future()) {}

    Status make() {
        m_task();
        return {};
    }
    Made& get(StopSignal& stop) const {
        waitFor(m_made, stop);
        return *m_made.get();
    }

  private:
    std::packaged_task<Made*()> m_task;
    std::shared_future<Made*> m_made;
};

} // namespace tavix::profiling
