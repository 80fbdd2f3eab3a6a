#pragma once

#include "base/Result.h"
#include "profiling/StopSignal.h"
#include "profiling/ValueCounter.h"
#include "profiling/ValueRuns.h"

#include <cstddef>

namespace tavix::profiling {

/// The counted values of a column: those in memory, and sorted lists of those that there was no room for. A value may
/// stand in several of them.
class ColumnValues {
  public:
    [[nodiscard]] ValueCounter& counter() { return m_counter; }
    [[nodiscard]] const ValueCounter& counter() const { return m_counter; }

    /// Whether some of the values lie in the file; then only merged() knows all of them.
    [[nodiscard]] bool isSpilled() const { return !m_runs.isEmpty(); }
    /// Moves what is in memory to the file. For a moment it takes as much again as spillingTakes() says.
    [[nodiscard]] Status spill(SpillFile& file, StopSignal& stop);
    [[nodiscard]] std::size_t spillingTakes() const;

    /// What lies in the file. Merged it gives all values in the order of their texts, each once, null not among them,
    /// when what is in memory was spilled before.
    [[nodiscard]] const RunSet& runs() const { return m_runs; }
    /// Forgets everything.
    void clear(SpillFile& file);

  private:
    ValueCounter m_counter;
    RunSet m_runs{RunOrder::Text};
};

} // namespace tavix::profiling
