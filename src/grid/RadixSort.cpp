#include "grid/RadixSort.h"

#include "base/RadixSort.h"

#include <algorithm>

namespace tavix {

namespace {

// Below this, counting digits costs more than comparing keys.
constexpr std::size_t kFewItems = 256;

} // namespace

void radixSort(std::span<RadixItem> items, std::vector<RadixItem>& spare) {
    if (items.size() < kFewItems) {
        std::stable_sort(items.begin(), items.end(),
                         [](const RadixItem& a, const RadixItem& b) { return a.key < b.key; });
        return;
    }
    if (spare.size() < items.size())
        spare.resize(items.size());
    radixSortByBytes(items, std::span(spare).first(items.size()), sizeof(RadixItem::key),
                     [](const RadixItem& item) { return item.key; });
}

} // namespace tavix
