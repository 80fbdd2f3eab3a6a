#pragma once

#include "base/Result.h"
#include "profiling/StopSignal.h"
#include "profiling/ValueCounter.h"
#include "profiling/ValuePlaces.h"
#include "profiling/ValueRuns.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace tavix::profiling {

/// The counted values of a column: those in memory, and sorted lists of those that there was no room for. A value may
/// stand in several of them.
class ColumnValues {
  public:
    [[nodiscard]] ValueCounter& counter() { return m_counter; }
    [[nodiscard]] const ValueCounter& counter() const { return m_counter; }

    /// From now on `parts` counters share the values, so that as many threads can count. Before the first value only.
    void divide(std::uint32_t parts) { m_others.resize(parts - 1); }
    [[nodiscard]] std::uint32_t parts() const { return static_cast<std::uint32_t>(m_others.size()) + 1; }
    /// To note where the values stand; behind divide(), before the first value.
    void keepPlaces() { m_places.resize(parts()); }
    /// `places` divides the cells into ranges, from the first cell to behind the last one; without need of them, any.
    void count(std::span<const source::Cell> cells, std::span<const source::RowOffset> places, std::uint32_t part);
    /// Makes counter() hold all values that are in memory; nothing can be counted after it.
    void unite();

    /// Of all counters, or of one.
    [[nodiscard]] std::size_t memory() const;
    [[nodiscard]] std::size_t memory(std::uint32_t part) const {
        return (part == 0 ? m_counter : m_others[part - 1]).memory();
    }
    [[nodiscard]] std::size_t valuesInMemory() const;
    /// About how much work the figures of what is in memory are, compared with those of another column.
    [[nodiscard]] std::size_t work() const;

    /// Whether some of the values lie in the file; then only merged() knows all of them.
    [[nodiscard]] bool isSpilled() const { return !m_runs.isEmpty(); }
    /// Moves what is in memory to the file. For a moment it takes as much again as spillingTakes() says.
    [[nodiscard]] Status spill(SpillFile& file, StopSignal& stop);
    [[nodiscard]] std::size_t spillingTakes() const;

    /// What lies in the file. Merged it gives all values in the order of their texts, each once, null not among them,
    /// when what is in memory was spilled before.
    [[nodiscard]] const RunSet& runs() const { return m_runs; }
    /// Of the values' places, 0 when they are not kept.
    [[nodiscard]] std::size_t placesMemory() const;
    [[nodiscard]] std::size_t placesMemory(std::uint32_t part) const {
        return m_places.empty() ? 0 : m_places[part].memory();
    }
    void dropPlaces() { m_places.clear(); }
    /// To be called when all values were counted, before any is taken away.
    void closePlaces();
    /// In which of the ranges, counted over all calls of count(), the values stand; none when that was not kept. They
    /// were closed before, and another thread may compute with the values meanwhile.
    [[nodiscard]] std::vector<repository::OffsetIndexPage> takePlaces();
    /// Forgets the values, but not their places.
    void clearValues(SpillFile& file);
    /// Forgets everything.
    void clear(SpillFile& file);

  private:
    /// The places of values that were met too often were not all marked.
    void giveUpPlaces(const ValueCounter& counter);
    void countRange(std::span<const source::Cell> cells, std::uint32_t part, PlaceMarks* marks);
    Status spill(ValueCounter& counter, SpillFile& file, StopSignal& stop);

    ValueCounter m_counter;
    std::vector<ValueCounter> m_others;
    std::vector<ValuePlaces> m_places; ///< by part; empty when they are not kept
    bool m_arePlacesClosed = false;
    RunSet m_runs{RunOrder::Text};
};

} // namespace tavix::profiling
