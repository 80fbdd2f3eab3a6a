#pragma once

#include "base/Result.h"
#include "profiling/KeyedSort.h"
#include "profiling/PackedResult.h"
#include "profiling/StopSignal.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Distributions in display order: highest count first; among equal counts null first, then by code point.
namespace tavix::profiling {

/// A key that sorts from the highest count down.
[[nodiscard]] constexpr std::uint64_t descendingKey(std::uint64_t count) {
    return ~count;
}
/// Whether a value of this count comes before null, which occurs `nulls` times.
[[nodiscard]] constexpr bool isBeforeNull(std::uint64_t count, std::uint64_t nulls) {
    return count > nulls;
}

/// The rows of a distribution in memory, in display order. The entries must outlive it.
class ShownRows {
  public:
    /// `byText`: the entries in the order of their texts. There is no row for null when `nulls` is 0.
    ShownRows(const EntryList& entries, std::span<const Keyed> byText, std::uint64_t nulls);

    [[nodiscard]] static std::size_t count(const EntryList& entries, std::uint64_t nulls) {
        return entries.size() + (nulls > 0 ? 1 : 0);
    }
    [[nodiscard]] std::size_t size() const { return count(m_entries, m_nulls); }
    /// Packs `count` rows from `first` on and finishes `rows`. Several threads may pack different rows.
    [[nodiscard]] Status pack(std::size_t first, std::size_t count, PackedRows& rows, ByteStore& store,
                              StopSignal& stop) const;

  private:
    [[nodiscard]] Status packValues(std::size_t begin, std::size_t end, PackedRows& rows, ByteStore& store,
                                    StopSignal& stop) const;

    const EntryList& m_entries;
    std::vector<std::uint32_t> m_order; ///< without null
    std::uint64_t m_nulls;
    std::size_t m_nullRow; ///< the row of null, or the one that it would have
};

/// Packs the sorted hashes of values in memory.
[[nodiscard]] Status packHashes(const EntryList& entries, PackedResult& packed, StopSignal& stop);

} // namespace tavix::profiling
