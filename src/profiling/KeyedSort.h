#pragma once

#include "profiling/StopSignal.h"
#include "profiling/ValueCounter.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Sorting by radix what is too much to be compared.
namespace tavix::profiling {

/// A distinct value by its place among the entries, with what it is sorted by.
struct Keyed {
    static constexpr std::uint32_t kLargeCount = UINT32_MAX;

    std::uint64_t key = 0;
    std::uint32_t index = 0;
    std::uint32_t count = 0; ///< kLargeCount when the entry has to be asked

    [[nodiscard]] std::uint64_t countIn(const EntryList& entries) const {
        return count == kLargeCount ? entries[index].count : count;
    }
};

/// By the key; what has the same key stays in its order. `spare` is memory that may be used. When it is stopped the
/// order is any.
void sortByKey(std::span<Keyed> rows, std::vector<Keyed>& spare, StopSignal& stop);

/// All entries in the order of the bytes of their texts, which is by code point. The keys mean nothing.
[[nodiscard]] std::vector<Keyed> sortedByText(const EntryList& entries, std::vector<Keyed>& spare, StopSignal& stop);

/// The same in parts that several threads can sort at once. The entries and the lists must outlive it.
class DividedTextSort {
  public:
    /// Leaves all entries in `rows`, dealt into the parts.
    DividedTextSort(const EntryList& entries, std::vector<Keyed>& rows, std::vector<Keyed>& spare);

    /// At most; those behind the last one have nothing to be sorted.
    static constexpr std::size_t kParts = 17;
    void sortPart(std::size_t part, StopSignal& stop);

  private:
    const EntryList& m_entries;
    std::vector<Keyed>& m_rows;
    std::vector<Keyed>& m_spare;
    std::vector<std::size_t> m_starts; ///< of the parts, and the end
    std::size_t m_prefix = 0;          ///< bytes that all texts have in common
};

void sortNumbers(std::vector<std::uint64_t>& numbers, StopSignal& stop);

} // namespace tavix::profiling
