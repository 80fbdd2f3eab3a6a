#pragma once

#include "base/Result.h"
#include "profiling/KeyedSort.h"
#include "profiling/PackedResult.h"
#include "profiling/ValueRuns.h"

#include <cstdint>
#include <span>

/// Distributions in the order in which they are shown: highest count first, among equal counts null first, then by code
/// point.
namespace tavix::profiling {

/// Packs values in memory; `byText` is their order by text. No row for null when `nulls` is 0.
[[nodiscard]] Status packByCount(std::span<const ValueCounter::Entry> entries, std::span<const Keyed> byText,
                                 std::uint64_t nulls, PackedRows& rows, ByteStore& store, StopSignal& stop);

/// Packs the sorted hashes of values in memory.
[[nodiscard]] Status packHashes(std::span<const ValueCounter::Entry> entries, PackedResult& packed, StopSignal& stop);

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

} // namespace tavix::profiling
