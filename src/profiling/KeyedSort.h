#pragma once

#include "profiling/StopSignal.h"
#include "profiling/ValueCounter.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Radix sorts of rows that are too many to be sorted by comparing.
namespace tavix::profiling {

/// A distinct value by its index among the entries, with its sort key.
struct Keyed {
    static constexpr std::uint32_t kLargeCount = UINT32_MAX;

    std::uint64_t key = 0;
    std::uint32_t index = 0;
    std::uint32_t count = 0; ///< kLargeCount: see the entry

    [[nodiscard]] std::uint64_t countIn(const EntryList& entries) const {
        return count == kLargeCount ? entries[index].count : count;
    }
};

/// Sorts by the key; stable. `spare` is memory to use. The order is undefined when it is stopped.
void sortByKey(std::span<Keyed> rows, std::vector<Keyed>& spare, StopSignal& stop);

/// All entries in the order of the bytes of their texts, which is by code point. The keys are meaningless.
[[nodiscard]] std::vector<Keyed> sortedByText(const EntryList& entries, std::vector<Keyed>& spare, StopSignal& stop);

/// sortedByText() in parts that several threads can sort at once. The entries and the lists must outlive it.
class DividedTextSort {
  public:
    /// Distributes all entries among the parts, in `rows`.
    DividedTextSort(const EntryList& entries, std::vector<Keyed>& rows, std::vector<Keyed>& spare);

    /// The most parts there are; sorting one beyond the last does nothing.
    static constexpr std::size_t kParts = 17;
    void sortPart(std::size_t part, StopSignal& stop);

  private:
    const EntryList& m_entries;
    std::vector<Keyed>& m_rows;
    std::vector<Keyed>& m_spare;
    std::vector<std::size_t> m_starts; ///< of the parts, and the end of the last
    std::size_t m_prefix = 0;          ///< bytes that all texts begin with
};

void sortNumbers(std::vector<std::uint64_t>& numbers, StopSignal& stop);

} // namespace tavix::profiling
