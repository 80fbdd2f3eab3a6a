#include "profiling/MergedDistribution.h"

#include "profiling/DistributionOrder.h"
#include "profiling/StopSignal.h"

#include <vector>

namespace tavix::profiling {

namespace {

/// Inserts null at its place among rows that come by count.
class NullRow {
  public:
    explicit NullRow(std::uint64_t count) : m_count(count) {}

    Status addBefore(std::uint64_t count, PackedRows& rows, ByteStore& store) {
        return !isBeforeNull(count, m_count) ? add(rows, store) : Status{};
    }
    Status add(PackedRows& rows, ByteStore& store) {
        if (m_count == 0)
            return {};
        const std::uint64_t count = m_count;
        m_count = 0;
        return rows.add(store, {{}, count, true});
    }

  private:
    std::uint64_t m_count; ///< 0 once it was added
};

/// Calls use(record) for each record of the merged runs.
template <typename Use>
Status useMerged(const RunSet& runs, const Merging& merging, Use use) {
    RunMerge merge = runs.merge(merging.file, merging.memory);
    for (std::size_t i = 0;; ++i) {
        if (i % kRowsBetweenPolls == 0 && merging.stop.isStopped())
            return StopSignal::stopped();
        const auto more = merge.next();
        if (!more)
            return more.error();
        if (!*more)
            return {};
        if (Status status = use(merge.record()); !status)
            return status;
    }
}

Status packInMemory(ValueCounter& counter, PackedRows& rows, const Merging& merging) {
    counter.finish();
    std::vector<Keyed> spare;
    const std::vector<Keyed> order = sortedByText(counter.entries(), spare, merging.stop);
    const ShownRows shown(counter.entries(), order, 0);
    return shown.pack(0, shown.size(), rows, merging.store, merging.stop);
}

} // namespace

Status packMergedByCount(const RunSet& runs, std::uint64_t nulls, PackedRows& rows, const Merging& merging) {
    NullRow null(nulls);
    Status status = useMerged(runs, merging, [&](const RunRecord& record) {
        Status added = null.addBefore(record.count, rows, merging.store);
        return added ? rows.add(merging.store, {record.text, record.count, false}) : added;
    });
    if (status)
        status = null.add(rows, merging.store);
    return status ? rows.finish(merging.store) : status;
}

Status packMergedHashes(RunBuffer& hashes, PackedResult& packed, const Merging& merging) {
    const auto runs = hashes.finish();
    if (!runs)
        return runs.error();
    std::vector<std::uint64_t> chunk;
    Status status = useMerged(**runs, merging, [&](const RunRecord& record) -> Status {
        chunk.push_back(record.key);
        if (chunk.size() < repository::kHashesPerChunk)
            return {};
        Status added = packed.addHashes(chunk);
        chunk.clear();
        return added;
    });
    return status && !chunk.empty() ? packed.addHashes(chunk) : status;
}

Status packCounted(ColumnValues& values, PackedRows& rows, const Merging& merging) {
    if (!values.isSpilled()) {
        Status status = packInMemory(values.counter(), rows, merging);
        values.clear(merging.file);
        return status;
    }
    if (Status status = values.spill(merging.file, merging.stop); !status)
        return status;
    RunBuffer byCount(merging.file, RunOrder::Key, merging.memory, merging.stop);
    const auto keyedByCount = [&](const RunRecord& record) {
        return byCount.add({descendingKey(record.count), record.count, record.text});
    };
    if (Status status = useMerged(values.runs(), merging, keyedByCount); !status)
        return status;
    values.clear(merging.file);
    const auto runs = byCount.finish();
    if (!runs)
        return runs.error();
    return packMergedByCount(**runs, 0, rows, merging);
}

} // namespace tavix::profiling
