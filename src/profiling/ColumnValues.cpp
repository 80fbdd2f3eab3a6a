#include "profiling/ColumnValues.h"

#include "profiling/KeyedSort.h"

#include <algorithm>
#include <utility>

namespace tavix::profiling {

void ColumnValues::countRange(std::span<const source::Cell> cells, std::uint32_t part, BucketSet* buckets) {
    if (m_others.empty())
        m_counter.count(cells, buckets);
    else
        (part == 0 ? m_counter : m_others[part - 1]).countPart(cells, part, parts(), buckets);
}

void ColumnValues::count(std::span<const source::Cell> cells, std::span<const source::RowOffset> places,
                         std::uint32_t part) {
    if (m_offsetIndexes.empty())
        return countRange(cells, part, nullptr);
    thread_local BucketSet buckets;
    for (std::size_t i = 1; i < places.size(); ++i) {
        countRange(cells.subspan(places[i - 1].row, places[i].row - places[i - 1].row), part, &buckets);
        m_offsetIndexes[part].endRange(buckets);
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

std::size_t ColumnValues::offsetIndexMemory() const {
    std::size_t memory = 0;
    for (const ValueOffsetIndex& index : m_offsetIndexes)
        memory += index.memory();
    return memory;
}

void ColumnValues::giveUpFrequentBuckets(const ValueCounter& counter) {
    if (m_isOffsetIndexClosed || m_offsetIndexes.empty())
        return;
    for (const auto& chunk : counter.entries().chunks())
        for (const Entry& entry : chunk)
            if (entry.count > ValueCounter::kMarkedRows)
                m_offsetIndexes.front().giveUp(repository::offsetIndexBucket(std::uint64_t{entry.hash} << 32));
}

void ColumnValues::closeOffsetIndex() {
    giveUpFrequentBuckets(m_counter);
    for (const ValueCounter& other : m_others)
        giveUpFrequentBuckets(other);
    m_isOffsetIndexClosed = true;
}

std::vector<repository::OffsetIndexPage> ColumnValues::takeOffsetIndex() {
    const std::vector<ValueOffsetIndex> indexes = std::exchange(m_offsetIndexes, {});
    return indexes.empty() ? std::vector<repository::OffsetIndexPage>() : packOffsetIndex(indexes);
}

std::size_t ColumnValues::valuesInMemory() const {
    std::size_t values = m_counter.entries().size();
    for (const ValueCounter& other : m_others)
        values += other.entries().size();
    return values;
}

std::size_t ColumnValues::work() const {
    // Sorting a value costs as much as finding pattern and type of some characters.
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
    return values * 2 * sizeof(Keyed) + RunOutput::kBuffer;
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
    RunOutput output(file);
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i % kRowsBetweenPolls == 0 && stop.isStopped())
            return StopSignal::stopped();
        const auto& entry = entries[order[i].index];
        if (Status status = output.add({0, entry.count, entry.text()}); !status)
            return status;
    }
    auto run = output.finish();
    if (!run)
        return run.error();
    giveUpFrequentBuckets(counter);
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
    m_offsetIndexes.clear();
}

} // namespace tavix::profiling
