#pragma once

#include "base/Result.h"
#include "profiling/KeyedSort.h"
#include "profiling/ValueRuns.h"
#include "source/TextArena.h"

#include <cstddef>
#include <vector>

namespace tavix::profiling {

/// Sorts any number of records by their keys in bounded memory: what does not fit becomes a sorted run in a file.
/// Stable, except that RunOrder::KeyInteger orders records of equal keys by value first.
class RunBuffer {
  public:
    /// `memory`: bytes for the records in memory and for sorting them.
    RunBuffer(SpillFile& file, RunOrder order, std::size_t memory, StopSignal& stop)
        : m_file(file), m_order(order), m_memory(memory), m_stop(stop), m_runs(order) {}
    ~RunBuffer() { m_runs.release(m_file); }
    RunBuffer(const RunBuffer&) = delete;
    RunBuffer& operator=(const RunBuffer&) = delete;

    /// The text is copied.
    [[nodiscard]] Status add(const RunRecord& record);
    /// All records; call it after the last add().
    [[nodiscard]] Result<const RunSet*> finish();

  private:
    Status spill();

    SpillFile& m_file;
    RunOrder m_order;
    std::size_t m_memory;
    StopSignal& m_stop;
    EntryList m_entries;
    std::vector<Keyed> m_rows;
    std::vector<Keyed> m_spare;
    source::TextArena m_texts;
    std::size_t m_textBytes = 0;
    RunSet m_runs;
};

} // namespace tavix::profiling
