#pragma once

#include "base/Result.h"
#include "profiling/KeyedSort.h"
#include "profiling/PackedResult.h"
#include "profiling/StopSignal.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Distributions in the order in which they are shown: highest count first, among equal counts null first, then by code
/// point.
namespace tavix::profiling {

/// The rows of a distribution in memory. The entries must outlive it.
class ShownRows {
  public:
    /// `byText` is the order of the entries by text. No row for null when `nulls` is 0.
    ShownRows(const EntryList& entries, std::span<const Keyed> byText, std::uint64_t nulls);

    [[nodiscard]] std::size_t size() const { return m_order.size() + (m_nulls > 0 ? 1 : 0); }
    /// Packs `count` rows from `first` on and finishes the list. Several threads may pack different rows.
    [[nodiscard]] Status pack(std::size_t first, std::size_t count, PackedRows& rows, ByteStore& store,
                              StopSignal& stop) const;

  private:
    [[nodiscard]] Status packValues(std::size_t begin, std::size_t end, PackedRows& rows, ByteStore& store,
                                    StopSignal& stop) const;

    const EntryList& m_entries;
    std::vector<std::uint32_t> m_order; ///< null not among them
    std::uint64_t m_nulls;
    std::size_t m_nullRow; ///< where null stands, or would
};

/// Packs the sorted hashes of values in memory.
[[nodiscard]] Status packHashes(const EntryList& entries, PackedResult& packed, StopSignal& stop);

} // namespace tavix::profiling
