#include "profiling/ColumnValues.h"

#include "profiling/KeyedSort.h"

#include <algorithm>
#include <utility>

namespace tavix::profiling {

namespace {

constexpr std::size_t kOutputBuffer = std::size_t{64} << 10;

} // namespace

void ColumnValues::countRange(std::span<const source::Cell> cells, std::uint32_t part, PlaceMarks* marks) {
    if (m_others.empty())
        m_counter.count(cells, marks);
    else
        (part == 0 ? m_counter : m_others[part - 1]).countPart(cells, part, parts(), marks);
}

void ColumnValues::count(std::span<const source::Cell> cells, std::span<const source::RowOffset> places,
                         std::uint32_t part) {
    if (m_places.empty())
        return countRange(cells, part, nullptr);
    thread_local PlaceMarks marks;
    for (std::size_t i = 1; i < places.size(); ++i) {
        countRange(cells.subspan(places[i - 1].row, places[i].row - places[i - 1].row), part, &marks);
        m_places[part].endRange(marks);
    }
}

void ColumnValues::unite() {
    for (ValueCounter& other : m_others)
        m_counter.absorb(std::move(other));
    m_others.clear();
}

std::size_t ColumnValues::memory() const {
    std::size_t memory = m_counter.memory();
    for (const ValueCounter& other : m_others)
        memory += other.memory();
    return memory;
}

std::size_t ColumnValues::placesMemory() const {
    std::size_t memory = 0;
    for (const ValuePlaces& places : m_places)
        memory += places.memory();
    return memory;
}

void ColumnValues::giveUpPlaces(const ValueCounter& counter) {
    if (m_arePlacesClosed || m_places.empty())
        return;
    for (const auto& chunk : counter.entries().chunks())
        for (const Entry& entry : chunk)
            if (entry.count > ValueCounter::kMarkedRows)
                m_places.front().giveUp(repository::offsetIndexBucket(std::uint64_t{entry.hash} << 32));
}

void ColumnValues::closePlaces() {
    giveUpPlaces(m_counter);
    for (const ValueCounter& other : m_others)
        giveUpPlaces(other);
    m_arePlacesClosed = true;
}

std::vector<repository::OffsetIndexPage> ColumnValues::takePlaces() {
    const std::vector<ValuePlaces> places = std::exchange(m_places, {});
    return places.empty() ? std::vector<repository::OffsetIndexPage>() : packPlaces(places);
}

std::size_t ColumnValues::valuesInMemory() const {
    std::size_t values = m_counter.entries().size();
    for (const ValueCounter& other : m_others)
        values += other.entries().size();
    return values;
}

std::size_t ColumnValues::work() const {
    // Sorting costs as much for each value as patterns and types for some characters.
    constexpr std::size_t kPerValue = 8;
    std::size_t work = valuesInMemory() * kPerValue + m_counter.textBytes();
    for (const ValueCounter& other : m_others)
        work += other.textBytes();
    return work;
}

std::size_t ColumnValues::spillingTakes() const {
    std::size_t values = m_counter.entries().size();
    for (const ValueCounter& other : m_others)
        values = std::max(values, other.entries().size());
    return values * 2 * sizeof(Keyed) + kOutputBuffer;
}

Status ColumnValues::spill(SpillFile& file, StopSignal& stop) {
    if (Status status = spill(m_counter, file, stop); !status)
        return status;
    for (ValueCounter& other : m_others)
        if (Status status = spill(other, file, stop); !status)
            return status;
    return {};
}

Status ColumnValues::spill(ValueCounter& counter, SpillFile& file, StopSignal& stop) {
    const EntryList& entries = counter.entries();
    if (entries.empty())
        return {};
    std::vector<Keyed> order;
    {
        std::vector<Keyed> spare;
        order = sortedByText(entries, spare, stop);
    }
    RunOutput output(file, kOutputBuffer);
    constexpr std::size_t kBetweenStops = 4096;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i % kBetweenStops == 0 && stop.isStopped())
            return StopSignal::stopped();
        const auto& entry = entries[order[i].index];
        if (Status status = output.add({0, entry.count, entry.text()}); !status)
            return status;
    }
    auto run = output.finish();
    if (!run)
        return run.error();
    giveUpPlaces(counter);
    counter.dropValues();
    return m_runs.add(file, std::move(*run));
}

void ColumnValues::clearValues(SpillFile& file) {
    m_counter = ValueCounter();
    m_others.clear();
    m_runs.release(file);
}

void ColumnValues::clear(SpillFile& file) {
    clearValues(file);
    m_places.clear();
}

} // namespace tavix::profiling
