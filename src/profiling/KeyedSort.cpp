#include "profiling/KeyedSort.h"

#include "base/RadixSort.h"
#include "profiling/ValueRuns.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>

namespace tavix::profiling {

namespace {

constexpr std::size_t kInsertion = 40;     ///< up to here insertion sort is fastest
constexpr std::size_t kComparing = 400;    ///< up to here comparing is fastest
constexpr std::size_t kInCache = 1U << 15; ///< more are distributed by their first byte until a part fits the cache
constexpr unsigned kBytes = 8;

std::uint64_t keyOf(const Keyed& row) {
    return row.key;
}
std::uint64_t keyOf(std::uint64_t row) {
    return row;
}

template <typename Row>
void insertionSort(std::span<Row> rows) {
    for (std::size_t i = 1; i < rows.size(); ++i) {
        const Row moving = rows[i];
        std::size_t at = i;
        for (; at > 0 && keyOf(moving) < keyOf(rows[at - 1]); --at)
            rows[at] = rows[at - 1];
        rows[at] = moving;
    }
}

template <typename Row>
class RadixSort {
  public:
    explicit RadixSort(StopSignal& stop) : m_stop(stop) {}

    /// Stable. `spare` is as long as `rows`. All keys agree in the bytes above `byte`.
    void sort(std::span<Row> rows, std::span<Row> spare, unsigned byte) {
        if (rows.size() <= kInsertion)
            return insertionSort(rows);
        if (rows.size() <= kComparing) {
            std::stable_sort(rows.begin(), rows.end(), [](const Row& a, const Row& b) { return keyOf(a) < keyOf(b); });
            return;
        }
        if (rows.size() <= kInCache)
            return radixSortByBytes(rows, spare, byte + 1, [](const Row& row) { return keyOf(row); });
        if (m_stop.isStopped())
            return;
        std::array<std::size_t, 257> starts{};
        const unsigned shift = byte * 8;
        for (const Row& row : rows)
            ++starts[(keyOf(row) >> shift & 0xFF) + 1];
        if (std::find(starts.begin(), starts.end(), rows.size()) != starts.end()) {
            if (byte > 0)
                sort(rows, spare, byte - 1);
            return;
        }
        for (std::size_t i = 1; i < starts.size(); ++i)
            starts[i] += starts[i - 1];
        std::array<std::size_t, 256> next{};
        std::copy_n(starts.begin(), next.size(), next.begin());
        for (const Row& row : rows)
            spare[next[keyOf(row) >> shift & 0xFF]++] = row;
        std::memcpy(static_cast<void*>(rows.data()), spare.data(), rows.size_bytes());
        if (byte > 0)
            for (std::size_t i = 0; i + 1 < starts.size(); ++i)
                sort(rows.subspan(starts[i], starts[i + 1] - starts[i]),
                     spare.subspan(starts[i], starts[i + 1] - starts[i]), byte - 1);
    }

  private:
    StopSignal& m_stop;
};

/// The number of bytes that all texts begin with.
std::size_t commonPrefix(const EntryList& entries) {
    const std::string_view first = entries.front().text();
    std::size_t common = first.size();
    for (const auto& chunk : entries.chunks())
        for (const Entry& entry : chunk) {
            common = std::min<std::size_t>(common, entry.size);
            if (common > 0 && std::memcmp(first.data(), entry.data, common) != 0) {
                std::size_t same = 0;
                while (first[same] == entry.data[same])
                    ++same;
                common = same;
            }
            if (common == 0)
                return 0;
        }
    return common;
}

/// Sorts by eight bytes at a time, then only the ranges that these leave equal.
class TextSort {
  public:
    TextSort(const EntryList& entries, std::span<Keyed> rows, std::span<Keyed> spare, StopSignal& stop)
        : m_entries(entries), m_rows(rows), m_spare(spare), m_stop(stop) {}

    void sort(std::size_t from) {
        RadixSort<Keyed>(m_stop).sort(m_rows, m_spare, kBytes - 1);
        std::vector<Range> ranges{{0, static_cast<std::uint32_t>(m_rows.size()), static_cast<std::uint32_t>(from)}};
        std::vector<Range> open;
        while (!ranges.empty() && !m_stop.isStopped()) {
            open.clear();
            for (const Range& range : ranges)
                findEqual(range, open);
            for (const Range& range : open)
                loadKeys(range);
            ranges.clear();
            for (const Range& range : open) {
                const auto rows = m_rows.subspan(range.begin, range.size);
                if (hasEnded(range)) {
                    // These texts differ only in zero bytes at their ends, or first after them.
                    std::sort(rows.begin(), rows.end(), [&](const Keyed& a, const Keyed& b) {
                        return m_entries[a.index].text() < m_entries[b.index].text();
                    });
                    continue;
                }
                RadixSort<Keyed>(m_stop).sort(rows, m_spare.subspan(range.begin, range.size), kBytes - 1);
                ranges.push_back(range);
            }
        }
    }

  private:
    struct Range {
        std::uint32_t begin = 0;
        std::uint32_t size = 0;
        std::uint32_t from = 0; ///< offset of the bytes in the keys
    };

    /// Finds the ranges of equal keys in a sorted range.
    void findEqual(const Range& range, std::vector<Range>& open) const {
        const std::uint32_t end = range.begin + range.size;
        for (std::uint32_t i = range.begin; i + 1 < end;) {
            std::uint32_t next = i + 1;
            while (next < end && m_rows[next].key == m_rows[i].key)
                ++next;
            if (next - i > 1)
                open.push_back({i, next - i, range.from + kBytes});
            i = next;
        }
    }

    void loadKeys(const Range& range) {
        constexpr std::size_t kAhead = 16;
        const std::size_t end = range.begin + range.size;
        for (std::size_t i = range.begin; i < end; ++i) {
            // The neighbours of the range are needed soon, too.
            if (i + 2 * kAhead < m_rows.size())
                __builtin_prefetch(&m_entries[m_rows[i + 2 * kAhead].index]);
            if (i + kAhead < m_rows.size())
                __builtin_prefetch(m_entries[m_rows[i + kAhead].index].data);
            m_rows[i].key = prefixOf(m_entries[m_rows[i].index].text(), range.from);
        }
    }

    [[nodiscard]] bool hasEnded(const Range& range) const {
        const auto rows = m_rows.subspan(range.begin, range.size);
        return std::any_of(rows.begin(), rows.end(),
                           [&](const Keyed& row) { return row.key == 0 && m_entries[row.index].size < range.from; });
    }

    const EntryList& m_entries;
    std::span<Keyed> m_rows;
    std::span<Keyed> m_spare; ///< as long
    StopSignal& m_stop;
};

/// All entries with the eight bytes from `from` on as keys.
std::vector<Keyed> keyedByText(const EntryList& entries, std::size_t from) {
    std::vector<Keyed> rows(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        rows[i] = {prefixOf(entries[i].text(), from), static_cast<std::uint32_t>(i),
                   static_cast<std::uint32_t>(std::min<std::uint64_t>(entries[i].count, Keyed::kLargeCount))};
    return rows;
}

} // namespace

void sortByKey(std::span<Keyed> rows, std::vector<Keyed>& spare, StopSignal& stop) {
    const auto isBefore = [](const Keyed& a, const Keyed& b) { return a.key < b.key; };
    if (std::is_sorted(rows.begin(), rows.end(), isBefore))
        return;
    if (spare.size() < rows.size())
        spare.resize(rows.size());
    RadixSort<Keyed>(stop).sort(rows, std::span(spare).first(rows.size()), kBytes - 1);
}

std::vector<Keyed> sortedByText(const EntryList& entries, std::vector<Keyed>& spare, StopSignal& stop) {
    if (entries.empty())
        return {};
    const std::size_t from = commonPrefix(entries);
    std::vector<Keyed> rows = keyedByText(entries, from);
    if (spare.size() < rows.size())
        spare.resize(rows.size());
    TextSort(entries, rows, std::span(spare).first(rows.size()), stop).sort(from);
    return rows;
}

DividedTextSort::DividedTextSort(const EntryList& entries, std::vector<Keyed>& rows, std::vector<Keyed>& spare)
    : m_entries(entries), m_rows(rows), m_spare(spare), m_starts{0} {
    constexpr unsigned kShift = (kBytes - 1) * 8;
    m_prefix = entries.empty() ? 0 : commonPrefix(entries);
    spare = keyedByText(entries, m_prefix);
    rows.resize(spare.size());
    // Distribute the rows by the first byte that differs.
    std::array<std::size_t, 257> starts{};
    for (const Keyed& row : spare)
        ++starts[(row.key >> kShift) + 1];
    for (std::size_t i = 1; i < starts.size(); ++i) {
        starts[i] += starts[i - 1];
        if (starts[i] - m_starts.back() > rows.size() / (kParts - 1))
            m_starts.push_back(starts[i]);
    }
    if (m_starts.back() < rows.size())
        m_starts.push_back(rows.size());
    for (const Keyed& row : spare)
        rows[starts[row.key >> kShift]++] = row;
}

void DividedTextSort::sortPart(std::size_t part, StopSignal& stop) {
    if (part + 1 >= m_starts.size())
        return;
    const std::size_t first = m_starts[part];
    const std::size_t size = m_starts[part + 1] - first;
    TextSort(m_entries, std::span(m_rows).subspan(first, size), std::span(m_spare).subspan(first, size), stop)
        .sort(m_prefix);
}

void sortNumbers(std::vector<std::uint64_t>& numbers, StopSignal& stop) {
    std::vector<std::uint64_t> spare(numbers.size());
    RadixSort<std::uint64_t>(stop).sort(numbers, spare, kBytes - 1);
}

} // namespace tavix::profiling
