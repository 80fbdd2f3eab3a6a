#include "profiling/ValueCounter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <utility>

namespace tavix::profiling {

namespace {

__extension__ typedef unsigned __int128 Wide;

constexpr std::size_t kFirstSlots = 1024;
constexpr std::size_t kBatch = 64;
/// From here on the entries do not fit the cache, and fetching them early pays.
constexpr std::size_t kManyEntries = 20000;

/// Not the same in two processes, so that nobody can write a file whose values all fall on one slot.
struct Seeds {
    std::uint64_t first;
    std::uint64_t second;

    Seeds() {
        std::random_device device;
        const auto word = [&] { return (static_cast<std::uint64_t>(device()) << 32) | device(); };
        first = word();
        second = word();
    }
};

const Seeds& seeds() {
    static const Seeds kSeeds;
    return kSeeds;
}

template <typename Word>
std::uint64_t load(const char* from) {
    Word word = 0;
    std::memcpy(&word, from, sizeof word);
    return word;
}

std::uint64_t mix(std::uint64_t a, std::uint64_t b) {
    const Wide product = static_cast<Wide>(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

/// Up to 16 bytes as two words; reads nothing outside of them.
inline void loadShort(const char* data, std::size_t size, std::uint64_t& a, std::uint64_t& b) {
    if (size >= 8) {
        a = load<std::uint64_t>(data);
        b = load<std::uint64_t>(data + size - 8);
    } else if (size >= 4) {
        a = load<std::uint32_t>(data);
        b = load<std::uint32_t>(data + size - 4);
    } else if (size > 0) {
        a = load<std::uint8_t>(data) << 16 | load<std::uint8_t>(data + size / 2) << 8;
        b = load<std::uint8_t>(data + size - 1);
    } else {
        a = 0;
        b = 0;
    }
}

inline std::uint64_t hashOf(const Seeds& seed, const char* data, std::size_t size) {
    std::uint64_t state = seed.first ^ (size * 0x9E3779B97F4A7C15U);
    while (size > 16) {
        state = mix(load<std::uint64_t>(data) ^ state, load<std::uint64_t>(data + 8) ^ seed.second);
        data += 16;
        size -= 16;
    }
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    loadShort(data, size, a, b);
    return mix(mix(a ^ state, b ^ seed.second) ^ seed.first, 0x9E3779B97F4A7C15U);
}

inline bool areEqual(const char* left, const char* right, std::size_t size) {
    if (size > 16)
        return std::memcmp(left, right, size) == 0;
    std::uint64_t a = 0;
    std::uint64_t b = 0;
    std::uint64_t c = 0;
    std::uint64_t d = 0;
    loadShort(left, size, a, b);
    loadShort(right, size, c, d);
    return a == c && b == d;
}

} // namespace

ValueCounter::ValueCounter() : m_slots(kFirstSlots) {}

void ValueCounter::count(std::span<const source::Cell> cells) {
    countCells<false>(cells, 0, 1);
}

void ValueCounter::countPart(std::span<const source::Cell> cells, std::uint32_t part, std::uint32_t parts) {
    countCells<true>(cells, part, parts);
}

template <bool kIsPart>
void ValueCounter::countCells(std::span<const source::Cell> cells, std::uint32_t part, std::uint32_t parts) {
    const Seeds& seed = seeds();
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
            const std::uint64_t hash = hashOf(seed, cell.data, cell.size);
            // By the half of the hash that does not choose the slot.
            if (kIsPart && (hash & 0xFFFFFFFF) * parts >> 32 != part)
                continue;
            __builtin_prefetch(&m_slots[(hash >> 32) & mask]);
            hashes[n] = hash;
            present[n++] = &cell;
        }
        if (part == 0)
            m_nullCount += nulls;
        if (m_entries.size() > kManyEntries)
            for (std::size_t i = 0; i < n; ++i)
                if (const std::uint32_t slot = m_slots[(hashes[i] >> 32) & mask]; slot != 0)
                    __builtin_prefetch(&m_entries[slot - 1]);
        for (std::size_t i = 0; i < n; ++i)
            addHashed(present[i]->data, present[i]->size, hashes[i], 1);
    }
}

void ValueCounter::add(std::string_view text, std::uint64_t count) {
    addHashed(text.data(), static_cast<std::uint32_t>(text.size()), hashOf(seeds(), text.data(), text.size()), count);
}

void ValueCounter::finish() {
    m_slots = {};
}

void ValueCounter::absorb(ValueCounter&& other) {
    finish();
    m_entries.insert(m_entries.end(), other.m_entries.begin(), other.m_entries.end());
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
    m_slots.assign(kFirstSlots, 0);
    m_slots.shrink_to_fit();
}

inline void ValueCounter::addHashed(const char* data, std::uint32_t size, std::uint64_t hash, std::uint64_t count) {
    const auto shortHash = static_cast<std::uint32_t>(hash >> 32);
    const std::size_t mask = m_slots.size() - 1;
    for (std::size_t at = shortHash & mask;; at = (at + 1) & mask) {
        const std::uint32_t slot = m_slots[at];
        if (slot == 0) {
            m_entries.push_back({m_texts.keep({data, size}), count, size, shortHash});
            m_textBytes += size;
            m_slots[at] = static_cast<std::uint32_t>(m_entries.size());
            if (m_entries.size() * 2 > m_slots.size())
                grow();
            return;
        }
        Entry& entry = m_entries[slot - 1];
        if (entry.hash == shortHash && entry.size == size && areEqual(entry.data, data, size)) {
            entry.count += count;
            return;
        }
    }
}

void ValueCounter::grow() {
    std::vector<std::uint32_t> slots(m_slots.size() * 4);
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
