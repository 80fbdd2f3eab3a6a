#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace tavix {

/// Sorts ascending by the lowest `bytes` bytes (at most 8) of the unsigned keys that `keyOf` gives; the higher bytes
/// must be the same in all keys. Items of one key stay in their order. There are fewer than 2^32 items, at least one,
/// and `spare` has as many. Works from the last byte to the first and skips bytes that all keys share.
template <typename Item, typename KeyOf>
void radixSortByBytes(std::span<Item> items, std::span<Item> spare, unsigned bytes, KeyOf keyOf) {
    constexpr std::size_t kByteValues = 256;
    std::array<std::array<std::uint32_t, kByteValues>, 8> counts;
    for (unsigned byte = 0; byte < bytes; ++byte)
        counts[byte].fill(0);
    for (const Item& item : items)
        for (unsigned byte = 0; byte < bytes; ++byte)
            ++counts[byte][keyOf(item) >> (byte * 8) & 0xFF];
    std::span<Item> from = items;
    std::span<Item> to = spare;
    for (unsigned byte = 0; byte < bytes; ++byte) {
        std::array<std::uint32_t, kByteValues>& starts = counts[byte];
        if (starts[keyOf(from.front()) >> (byte * 8) & 0xFF] == items.size())
            continue;
        std::uint32_t next = 0;
        for (std::uint32_t& start : starts)
            start = std::exchange(next, next + start);
        for (const Item& item : from)
            to[starts[keyOf(item) >> (byte * 8) & 0xFF]++] = item;
        std::swap(from, to);
    }
    if (from.data() != items.data())
        std::copy(from.begin(), from.end(), items.begin());
}

} // namespace tavix
