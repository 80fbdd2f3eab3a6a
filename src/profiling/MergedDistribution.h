#pragma once

#include "base/Result.h"
#include "profiling/ColumnValues.h"
#include "profiling/PackedResult.h"
#include "profiling/RunBuffer.h"
#include "profiling/ValueRuns.h"

#include <cstddef>
#include <cstdint>

/// Distributions of values that were spilled: packed from sorted lists in the file, in the order of
/// DistributionOrder.h.
namespace tavix::profiling {

/// What merging takes from outside; `memory` is for buffers.
struct Merging {
    SpillFile& file;
    ByteStore& store;
    StopSignal& stop;
    std::size_t memory = 0;
};

/// Packs the values of lists that are sorted by count from the highest down, then by text.
[[nodiscard]] Status packMergedByCount(const RunSet& runs, std::uint64_t nulls, PackedRows& rows,
                                       const Merging& merging);
/// Packs hashes, which are the keys of the records.
[[nodiscard]] Status packMergedHashes(RunBuffer& hashes, PackedResult& packed, const Merging& merging);
/// Packs what a column has counted, null left out, wherever it lies, and clears the column.
[[nodiscard]] Status packCounted(ColumnValues& values, PackedRows& rows, const Merging& merging);

} // namespace tavix::profiling
