#include "grid/RadixSort.h"

#include <algorithm>
#include <array>
#include <memory>

namespace tavix {

namespace {

constexpr std::size_t kDigits = 8;
constexpr std::size_t kDigitValues = 256;
// Below this, counting digits costs more than comparing keys.
constexpr std::size_t kFewItems = 256;

std::size_t digitOf(std::uint64_t key, std::size_t digit) {
    return static_cast<std::size_t>(key >> (8 * digit)) & (kDigitValues - 1);
}

} // namespace

void radixSort(std::span<RadixItem> items, std::vector<RadixItem>& spare) {
    if (items.size() < kFewItems) {
        std::stable_sort(items.begin(), items.end(),
                         [](const RadixItem& a, const RadixItem& b) { return a.key < b.key; });
        return;
    }
    std::array<std::array<std::size_t, kDigitValues>, kDigits> counts{};
    for (const RadixItem& item : items) {
        for (std::size_t digit = 0; digit < kDigits; ++digit)
            ++counts[digit][digitOf(item.key, digit)];
    }
    if (spare.size() < items.size())
        spare.resize(items.size());
    std::span<RadixItem> from = items;
    std::span<RadixItem> to(spare.data(), items.size());
    for (std::size_t digit = 0; digit < kDigits; ++digit) {
        std::array<std::size_t, kDigitValues>& next = counts[digit];
        // A digit that all keys share, as most of those of small integers are, moves nothing.
        if (next[digitOf(from.front().key, digit)] == items.size())
            continue;
        std::size_t begin = 0;
        for (std::size_t& place : next) {
            const std::size_t count = place;
            place = begin;
            begin += count;
        }
        for (const RadixItem& item : from)
            to[next[digitOf(item.key, digit)]++] = item;
        std::swap(from, to);
    }
    if (from.data() != items.data())
        std::copy(from.begin(), from.end(), items.begin());
}

} // namespace tavix
