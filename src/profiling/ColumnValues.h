#pragma once

#include "base/Result.h"
#include "profiling/StopSignal.h"
#include "profiling/ValueCounter.h"
#include "profiling/ValueOffsetIndex.h"
#include "profiling/ValueRuns.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tavix::profiling {

/// The counted values of a column: those in memory, and sorted runs of those that did not fit. A value may occur in
/// several of them.
class ColumnValues {
  public:
    [[nodiscard]] ValueCounter& counter() { return m_counter; }
    [[nodiscard]] const ValueCounter& counter() const { return m_counter; }

    /// Splits the values among `parts` counters, so that as many threads can count. Call it before the first value.
    void divide(std::uint32_t parts) { m_others.resize(parts - 1); }
    [[nodiscard]] std::uint32_t parts() const { return static_cast<std::uint32_t>(m_others.size()) + 1; }
    /// Starts an offset index of the values. Call it after divide() and before the first value.
    void keepOffsetIndex() { m_offsetIndexes.resize(parts()); }
    /// `places` splits the cells into ranges, from the first cell to one past the last. Without an offset index it is
    /// ignored.
    void count(std::span<const source::Cell> cells, std::span<const source::RowOffset> places, std::uint32_t part);
    /// Moves all values in memory to counter(). Nothing can be counted afterwards.
    void unite();

    /// Bytes of all counters, or of one.
    [[nodiscard]] std::size_t memory() const;
    [[nodiscard]] std::size_t memory(std::uint32_t part) const {
        return (part == 0 ? m_counter : m_others[part - 1]).memory();
    }
    [[nodiscard]] std::size_t valuesInMemory() const;
    /// An estimate of the work to profile the values in memory, comparable between columns.
    [[nodiscard]] std::size_t work() const;

    /// Whether some values are in the file; only runs() then has all of them.
    [[nodiscard]] bool isSpilled() const { return !m_runs.isEmpty(); }
    /// Moves the values in memory to the file. Needs spillingTakes() more bytes meanwhile.
    [[nodiscard]] Status spill(SpillFile& file, StopSignal& stop);
    [[nodiscard]] std::size_t spillingTakes() const;

    /// The runs in the file. When the values in memory were spilled before, merging them gives every value but null
    /// once, in the order of the texts.
    [[nodiscard]] const RunSet& runs() const { return m_runs; }
    /// Bytes of the offset index, 0 without one.
    [[nodiscard]] std::size_t offsetIndexMemory() const;
    [[nodiscard]] std::size_t offsetIndexMemory(std::uint32_t part) const {
        return m_offsetIndexes.empty() ? 0 : m_offsetIndexes[part].memory();
    }
    void dropOffsetIndex() { m_offsetIndexes.clear(); }
    /// Call it when all values were counted, before any is taken away.
    void closeOffsetIndex();
    /// The packed offset index over the ranges of all calls of count(); empty without one. closeOffsetIndex() must have
    /// been called. Another thread may compute with the values meanwhile.
    [[nodiscard]] std::vector<repository::OffsetIndexPage> takeOffsetIndex();
    /// Forgets the values, but not their offset index.
    void clearValues(SpillFile& file);
    void clear(SpillFile& file);

  private:
    /// Gives up the buckets of frequent values, which were not all marked.
    void giveUpFrequentBuckets(const ValueCounter& counter);
    void countRange(std::span<const source::Cell> cells, std::uint32_t part, BucketSet* buckets);
    Status spill(ValueCounter& counter, SpillFile& file, StopSignal& stop);

    ValueCounter m_counter;
    std::vector<ValueCounter> m_others;
    std::vector<ValueOffsetIndex> m_offsetIndexes; ///< by part; empty without an offset index
    bool m_isOffsetIndexClosed = false;
    RunSet m_runs{RunOrder::Text};
};

} // namespace tavix::profiling
