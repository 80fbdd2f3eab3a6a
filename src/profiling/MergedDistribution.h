#pragma once

#include "base/Result.h"
#include "profiling/ColumnValues.h"
#include "profiling/PackedResult.h"
#include "profiling/RunBuffer.h"
#include "profiling/ValueRuns.h"

#include <cstddef>
#include <cstdint>

/// Packs the distributions of spilled values from the runs in the file, in the order of DistributionOrder.h.
namespace tavix::profiling {

/// `memory`: bytes for buffers.
struct Merging {
    SpillFile& file;
    ByteStore& store;
    StopSignal& stop;
    std::size_t memory = 0;
};

/// Packs the values of runs that are sorted from the highest count down, then by text.
[[nodiscard]] Status packMergedByCount(const RunSet& runs, std::uint64_t nulls, PackedRows& rows,
                                       const Merging& merging);
/// Packs the hashes, which are the keys of the records.
[[nodiscard]] Status packMergedHashes(RunBuffer& hashes, PackedResult& packed, const Merging& merging);
/// Packs the counted values of a column without null, wherever they are, and clears the column.
[[nodiscard]] Status packCounted(ColumnValues& values, PackedRows& rows, const Merging& merging);

} // namespace tavix::profiling
