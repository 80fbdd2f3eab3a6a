#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace tavix {

struct RadixItem {
    std::uint64_t key = 0;
    std::uint32_t id = 0;
    std::uint32_t note = 0; ///< moves with the item
};

/// Stable sort, ascending by key. `spare` is a buffer that several calls can share.
void radixSort(std::span<RadixItem> items, std::vector<RadixItem>& spare);

} // namespace tavix
