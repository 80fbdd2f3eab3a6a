#pragma once

#include "base/TextHash.h"
#include "profiling/BucketSet.h"
#include "profiling/EntryList.h"
#include "source/RowReader.h"
#include "source/TextArena.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace tavix::profiling {

/// Random for each process, so that nobody can craft a file whose values all collide.
[[nodiscard]] const HashSeeds& valueSeeds();

/// Counts how often each value of a column occurs. Only a new value is copied; other rows allocate nothing.
class ValueCounter {
  public:
    ValueCounter();

    /// Occurrences of a value beyond this number are not added to a BucketSet.
    static constexpr std::uint64_t kMarkedRows = 1024;

    /// Adds the values' buckets to `buckets`, unless that is null.
    void count(std::span<const source::Cell> cells, BucketSet* buckets = nullptr);
    /// Counts the values that belong to one of `parts` counters, which share the values of a column without overlap.
    /// Nulls belong to part 0.
    void countPart(std::span<const source::Cell> cells, std::uint32_t part, std::uint32_t parts,
                   BucketSet* buckets = nullptr);
    void add(std::string_view text, std::uint64_t count);
    /// Adds values with their counts, many of which are faster than one by one. Their hashes are not used.
    void add(std::span<const Entry> values);
    void addNulls(std::uint64_t count) { m_nullCount += count; }

    /// The distinct values without null. Their texts live as long as the counter.
    [[nodiscard]] const EntryList& entries() const { return m_entries; }
    [[nodiscard]] std::uint64_t nullCount() const { return m_nullCount; }
    /// Frees the memory that only counting needs; nothing can be counted afterwards.
    void finish();
    /// Takes over the values and nulls of a counter that shares no value with this one. Nothing can be counted
    /// afterwards.
    void absorb(ValueCounter&& other);
    /// Forgets the values and frees their memory. The nulls stay, and counting can go on.
    void dropValues();
    /// Bytes of all texts.
    [[nodiscard]] std::size_t textBytes() const { return m_textBytes; }
    /// Bytes in use, including what a growing list takes for a moment.
    [[nodiscard]] std::size_t memory() const {
        std::size_t memory = m_slots.size() * sizeof(std::uint32_t) + m_entries.memory() + m_texts.memory();
        for (const source::TextArena& texts : m_absorbedTexts)
            memory += texts.memory();
        return memory;
    }

  private:
    template <bool kIsPart, bool kIsMarked>
    void countCells(std::span<const source::Cell> cells, std::uint32_t part, std::uint32_t parts, BucketSet* buckets);
    template <bool kIsMarked>
    void addHashed(const char* data, std::uint32_t size, std::uint64_t hash, std::uint64_t count, BucketSet* buckets);
    void prefetchEntries(std::span<const std::uint64_t> hashes) const;
    void grow();

    std::vector<std::uint32_t> m_slots; ///< index into m_entries plus one, 0 when free; open addressing
    EntryList m_entries;
    source::TextArena m_texts;
    std::vector<source::TextArena> m_absorbedTexts;
    std::size_t m_textBytes = 0;
    std::uint64_t m_nullCount = 0;
};

} // namespace tavix::profiling
