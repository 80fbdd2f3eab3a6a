#include "profiling/ValueCounter.h"

#include "base/FreeMemory.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <utility>

namespace tavix::profiling {

namespace {

constexpr std::size_t kFirstSlots = 1024;
constexpr std::size_t kManySlots = std::size_t{1} << 22;
constexpr std::size_t kBatch = 64;
/// From here on the entries exceed the cache, and prefetching them pays.
constexpr std::size_t kManyEntries = 20000;

inline bool areEqual(const char* left, const char* right, std::size_t size) {
    if (size > 16)
        return std::memcmp(left, right, size) == 0;
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    std::uint64_t c = 0;
    std::uint64_t d = 0;
    hashing::loadShort(left, size, a, b);
    hashing::loadShort(right, size, c, d);
    return a == c && b == d;
}

} // namespace

const HashSeeds& valueSeeds() {
    static const HashSeeds kSeeds = [] {
        std::random_device device;
        const auto word = [&] { return (static_cast<std::uint64_t>(device()) << 32) | device(); };
        const std::uint64_t first = word();
        return HashSeeds{first, word()};
    }();
    return kSeeds;
}

ValueCounter::ValueCounter() : m_slots(kFirstSlots) {}

void ValueCounter::count(std::span<const source::Cell> cells, BucketSet* buckets) {
    buckets ? countCells<false, true>(cells, 0, 1, buckets) : countCells<false, false>(cells, 0, 1, nullptr);
}

void ValueCounter::countPart(std::span<const source::Cell> cells, std::uint32_t part, std::uint32_t parts,
                             BucketSet* buckets) {
    buckets ? countCells<true, true>(cells, part, parts, buckets)
            : countCells<true, false>(cells, part, parts, nullptr);
}

template <bool kIsMarked>
[[gnu::always_inline]] inline void ValueCounter::addHashed(const char* data, std::uint32_t size, std::uint64_t hash,
                                                           std::uint64_t count, BucketSet* buckets) {
    const auto shortHash = static_cast<std::uint32_t>(hash >> 32);
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t at = shortHash & mask;; at = (at + 1) & mask) {
        const std::uint32_t slot = m_slots[at];
        if (slot == 0) {
            m_entries.add({m_texts.keep({data, size}), count, size, shortHash});
            m_textBytes += size;
            m_slots[at] = static_cast<std::uint32_t>(m_entries.size());
            if constexpr (kIsMarked)
                buckets->add(hash);
            if (m_entries.size() * 2 > m_slots.size())
                grow();
            return;
        }
        Entry& entry = m_entries[slot - 1];
        if (entry.hash == shortHash && entry.size == size && areEqual(entry.data, data, size)) {
            entry.count += count;
            if constexpr (kIsMarked)
                if (entry.count <= kMarkedRows)
                    buckets->add(hash);
            return;
        }
    }
}

[[gnu::always_inline]] inline void ValueCounter::prefetchEntries(std::span<const std::uint64_t> hashes) const {
    if (m_entries.size() <= kManyEntries)
        return;
    const std::size_t mask = m_slots.size() - 1;
    for (const std::uint64_t hash : hashes)
        if (const std::uint32_t slot = m_slots[(hash >> 32) & mask]; slot != 0)
            __builtin_prefetch(&m_entries[slot - 1]);
}

template <bool kIsPart, bool kIsMarked>
void ValueCounter::countCells(std::span<const source::Cell> cells, std::uint32_t part, std::uint32_t parts,
                              BucketSet* buckets) {
    const HashSeeds& seeds = valueSeeds();
    std::array<std::uint64_t, kBatch> hashes;
    std::array<const source::Cell*, kBatch> present;
    for (std::size_t start = 0; start < cells.size(); start += kBatch) {
        const auto batch = cells.subspan(start, std::min(kBatch, cells.size() - start));
        const std::size_t mask = m_slots.size() - 1;
        std::size_t n = 0;
        std::size_t nulls = 0;
        for (const source::Cell& cell : batch) {
            if (cell.isNull) {
                ++nulls;
                continue;
            }
            const std::uint64_t hash = hashText(seeds, cell.data, cell.size);
            hashes[n] = hash;
            present[n] = &cell;
            if constexpr (kIsPart) {
                // Uses the half of the hash that does not choose the slot, and no branch, which would be unpredictable.
                n += (hash & 0xFFFFFFFF) * parts >> 32 == part ? 1 : 0;
            } else {
                __builtin_prefetch(&m_slots[(hash >> 32) & mask]);
                ++n;
            }
        }
        if constexpr (kIsPart)
            for (std::size_t i = 0; i < n; ++i)
                __builtin_prefetch(&m_slots[(hashes[i] >> 32) & mask]);
        if (part == 0)
            m_nullCount += nulls;
        prefetchEntries(std::span(hashes).first(n));
        for (std::size_t i = 0; i < n; ++i)
            addHashed<kIsMarked>(present[i]->data, present[i]->size, hashes[i], 1, buckets);
    }
}

void ValueCounter::add(std::string_view text, std::uint64_t count) {
    addHashed<false>(text.data(), static_cast<std::uint32_t>(text.size()), hashText(valueSeeds(), text), count,
                     nullptr);
}

void ValueCounter::add(std::span<const Entry> values) {
    const HashSeeds& seeds = valueSeeds();
    std::array<std::uint64_t, kBatch> hashes;
    while (!values.empty()) {
        const auto batch = values.first(std::min(kBatch, values.size()));
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = 0; i < batch.size(); ++i) {
            hashes[i] = hashText(seeds, batch[i].text());
            __builtin_prefetch(&m_slots[(hashes[i] >> 32) & mask]);
        }
        prefetchEntries(std::span(hashes).first(batch.size()));
        for (std::size_t i = 0; i < batch.size(); ++i)
            addHashed<false>(batch[i].data, batch[i].size, hashes[i], batch[i].count, nullptr);
        values = values.subspan(batch.size());
    }
}

void ValueCounter::finish() {
    freeMemory(m_slots);
}

void ValueCounter::absorb(ValueCounter&& other) {
    finish();
    m_entries.join(std::move(other.m_entries));
    m_absorbedTexts.push_back(std::move(other.m_texts));
    for (source::TextArena& texts : other.m_absorbedTexts)
        m_absorbedTexts.push_back(std::move(texts));
    m_textBytes += other.m_textBytes;
    m_nullCount += other.m_nullCount;
    other = ValueCounter();
}

void ValueCounter::dropValues() {
    m_entries = {};
    m_texts.clear();
    m_absorbedTexts.clear();
    m_textBytes = 0;
    freeMemory(m_slots);
    m_slots.resize(kFirstSlots);
}

void ValueCounter::grow() {
    // A sparse table costs more, as fresh memory, than moving the entries once more.
    std::vector<std::uint32_t> slots(m_slots.size() * (m_slots.size() < kManySlots ? 4 : 2));
    const std::size_t mask = slots.size() - 1;
    for (std::size_t i = 0; i < m_entries.size(); ++i) {
        std::size_t at = m_entries[i].hash & mask;
        while (slots[at] != 0)
            at = (at + 1) & mask;
        slots[at] = static_cast<std::uint32_t>(i + 1);
    }
    m_slots.swap(slots);
}

} // namespace tavix::profiling
