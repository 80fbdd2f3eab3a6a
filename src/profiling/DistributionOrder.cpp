#include "profiling/DistributionOrder.h"

#include <algorithm>
#include <array>

namespace tavix::profiling {

namespace {

/// Indexes of the entries from the highest count down; equal counts stay in the order of `byText`.
std::vector<std::uint32_t> orderByCount(const EntryList& entries, std::span<const Keyed> byText) {
    // Most counts are small: they are sorted by counting, and only the few large ones by comparing.
    constexpr std::uint32_t kBuckets = 256;
    std::array<std::size_t, kBuckets> starts{};
    std::vector<std::uint32_t> order;
    order.reserve(byText.size());
    for (const Keyed& row : byText) {
        if (row.count < kBuckets)
            ++starts[kBuckets - 1 - row.count];
        else
            order.push_back(row.index);
    }
    std::stable_sort(order.begin(), order.end(),
                     [&](std::uint32_t a, std::uint32_t b) { return entries[a].count > entries[b].count; });
    std::size_t next = order.size();
    for (std::size_t& start : starts) {
        const std::size_t size = start;
        start = next;
        next += size;
    }
    order.resize(byText.size());
    for (const Keyed& row : byText)
        if (row.count < kBuckets)
            order[starts[kBuckets - 1 - row.count]++] = row.index;
    return order;
}

} // namespace

ShownRows::ShownRows(const EntryList& entries, std::span<const Keyed> byText, std::uint64_t nulls)
    : m_entries(entries), m_order(orderByCount(entries, byText)), m_nulls(nulls) {
    const auto isHigher = [&](std::uint32_t index) { return isBeforeNull(m_entries[index].count, m_nulls); };
    m_nullRow =
        static_cast<std::size_t>(std::partition_point(m_order.begin(), m_order.end(), isHigher) - m_order.begin());
}

Status ShownRows::pack(std::size_t first, std::size_t count, PackedRows& rows, ByteStore& store,
                       StopSignal& stop) const {
    std::size_t end = first + count;
    if (m_nulls > 0 && m_nullRow < end) {
        if (m_nullRow >= first) {
            if (Status status = packValues(first, m_nullRow, rows, store, stop); !status)
                return status;
            if (Status status = rows.add(store, {{}, m_nulls, true}); !status)
                return status;
            first = m_nullRow + 1;
        }
        --first; // null has no entry
        --end;
    }
    if (Status status = packValues(first, end, rows, store, stop); !status)
        return status;
    return rows.finish(store);
}

Status ShownRows::packValues(std::size_t begin, std::size_t end, PackedRows& rows, ByteStore& store,
                             StopSignal& stop) const {
    constexpr std::size_t kAhead = 12;
    for (std::size_t i = begin; i < end; ++i) {
        if (i % kRowsBetweenPolls == 0 && stop.isStopped())
            return StopSignal::stopped();
        if (i + 2 * kAhead < end)
            __builtin_prefetch(&m_entries[m_order[i + 2 * kAhead]]);
        if (i + kAhead < end)
            __builtin_prefetch(m_entries[m_order[i + kAhead]].data);
        const Entry& entry = m_entries[m_order[i]];
        if (Status status = rows.add(store, {entry.text(), entry.count, false}); !status)
            return status;
    }
    return {};
}

Status packHashes(const EntryList& entries, PackedResult& packed, StopSignal& stop) {
    std::vector<std::uint64_t> hashes(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i)
        hashes[i] = repository::hashValue(entries[i].text());
    sortNumbers(hashes, stop);
    std::span<const std::uint64_t> rest(hashes);
    while (!rest.empty()) {
        const auto chunk = rest.first(std::min(repository::kHashesPerChunk, rest.size()));
        if (Status status = packed.addHashes(chunk); !status)
            return status;
        rest = rest.subspan(chunk.size());
    }
    return {};
}

} // namespace tavix::profiling
