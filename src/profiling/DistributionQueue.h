#pragma once

#include "base/Result.h"
#include "profiling/FieldProfile.h"
#include "profiling/StopSignal.h"
#include "repository/RunWriter.h"

#include <deque>
#include <mutex>
#include <optional>

namespace tavix::profiling {

/// Distributions that wait to be stored: by one thread at a time, while others compute further ones.
class DistributionQueue {
  public:
    /// Both must outlive the queue. While it is in use nobody else may call the writer.
    DistributionQueue(repository::RunWriter& writer, StopSignal& stop) : m_writer(writer), m_stop(stop) {}

    /// By any thread. The field is borrowed until it is stored.
    void put(int table, FieldProfile& field);
    /// By any thread: stores what waits. Where another one is at that, it stores this too, and nothing is left to do.
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
    std::mutex m_mutex; ///< of what follows
    std::deque<Waiting> m_waiting;
    bool m_isStoring = false;
    std::optional<Error> m_failure;
};

} // namespace tavix::profiling
