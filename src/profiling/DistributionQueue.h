#pragma once

#include "base/Result.h"
#include "profiling/FieldProfile.h"
#include "profiling/StopSignal.h"
#include "repository/RunWriter.h"

#include <deque>
#include <mutex>
#include <optional>

namespace tavix::profiling {

/// Distributions to be stored by one thread at a time while others compute more.
class DistributionQueue {
  public:
    /// Both must outlive the queue. Nobody else may call the writer meanwhile.
    DistributionQueue(repository::RunWriter& writer, StopSignal& stop) : m_writer(writer), m_stop(stop) {}

    /// From any thread. Borrows the field until it is stored.
    void put(int table, FieldProfile& field);
    /// From any thread: stores the queued distributions, or returns at once when another thread is storing, which then
    /// stores these too.
    [[nodiscard]] Status store();
    /// Why storing failed, if it did.
    [[nodiscard]] const std::optional<Error>& failure() const { return m_failure; }

  private:
    struct Waiting {
        int table = -1;
        FieldProfile* field = nullptr;
    };

    repository::RunWriter& m_writer;
    StopSignal& m_stop;
    std::mutex m_mutex; ///< guards the members below
    std::deque<Waiting> m_waiting;
    bool m_isStoring = false;
    std::optional<Error> m_failure;
};

} // namespace tavix::profiling
