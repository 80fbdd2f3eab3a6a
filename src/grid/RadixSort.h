#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tavix {

struct RadixItem {
    std::uint64_t key = 0;
    std::uint32_t id = 0;
    std::uint32_t note = 0; ///< carried along
};

/// Ascending by key; items of one key stay in their order. `spare` is room that several calls share.
void radixSort(std::span<RadixItem> items, std::vector<RadixItem>& spare);

} // namespace tavix
