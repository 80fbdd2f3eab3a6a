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

/// Not the same in two processes, so that nobody can write a file whose values all fall on one slot.
[[nodiscard]] const HashSeeds& valueSeeds();

/// Counts how often each value of a column occurs. Rows cost no allocation: only a value that is met for the first
/// time is copied.
class ValueCounter {
  public:
    ValueCounter();

    /// A value that is met more often is not marked any more.
    static constexpr std::uint64_t kMarkedRows = 1024;

    /// With `marks`, these learn which values were met.
    void count(std::span<const source::Cell> cells, BucketSet* buckets = nullptr);
    /// Counts those of the values that fall to one of `parts` counters; the nulls fall to part 0. So several counters
    /// share the values of a column, and no value is in two of them.
    void countPart(std::span<const source::Cell> cells, std::uint32_t part, std::uint32_t parts,
                   BucketSet* buckets = nullptr);
    void add(std::string_view text, std::uint64_t count);
    void addNulls(std::uint64_t count) { m_nullCount += count; }

    /// The distinct values, null not among them. Their texts live as long as the counter.
    [[nodiscard]] const EntryList& entries() const { return m_entries; }
    [[nodiscard]] std::uint64_t nullCount() const { return m_nullCount; }
    /// Gives back the memory that only counting needs; nothing can be counted after it.
    void finish();
    /// Takes over values, none of which is here already, with the other's nulls. Then nothing can be counted any more.
    void absorb(ValueCounter&& other);
    /// Forgets the values and gives back their memory; the nulls stay, and counting can go on.
    void dropValues();
    /// Of all values together.
    [[nodiscard]] std::size_t textBytes() const { return m_textBytes; }
    /// Bytes of memory in use, those included that a growing list takes for a moment.
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
    void grow();

    std::vector<std::uint32_t> m_slots; ///< index into m_entries plus one, 0 when free; open addressing
    EntryList m_entries;
    source::TextArena m_texts;
    std::vector<source::TextArena> m_absorbedTexts;
    std::size_t m_textBytes = 0;
    std::uint64_t m_nullCount = 0;
};

} // namespace tavix::profiling
