#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace tavix {

/// Sorts rows by the lowest `bytes` bytes of their keys, from the last byte to the first: stable, in linear time, and
/// skipping bytes that all keys share. `Count` must be able to count the rows; `spare` is as long as `rows`, of which
/// there is at least one. `keyOf(row)` gives a std::uint64_t.
template <typename Count, typename Row, typename KeyOf>
void lsdRadixSort(std::span<Row> rows, std::span<Row> spare, unsigned bytes, KeyOf keyOf) {
    std::array<std::array<Count, 256>, sizeof(std::uint64_t)> counts;
    for (unsigned b = 0; b < bytes; ++b)
        counts[b].fill(0);
    for (const Row& row : rows)
        for (unsigned b = 0; b < bytes; ++b)
            ++counts[b][keyOf(row) >> (b * 8) & 0xFF];
    std::span<Row> from = rows;
    std::span<Row> to = spare;
    for (unsigned b = 0; b < bytes; ++b) {
        auto& starts = counts[b];
        if (starts[keyOf(from.front()) >> (b * 8) & 0xFF] == rows.size())
            continue;
        Count next = 0;
        for (Count& start : starts) {
            const Count size = start;
            start = next;
            next += size;
        }
        for (const Row& row : from)
            to[starts[keyOf(row) >> (b * 8) & 0xFF]++] = row;
        std::swap(from, to);
    }
    if (from.data() != rows.data())
        std::copy(from.begin(), from.end(), rows.begin());
}

} // namespace tavix
