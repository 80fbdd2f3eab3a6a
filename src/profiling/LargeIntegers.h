#pragma once

#include "forms/ValueKind.h"
#include "profiling/KeyedSort.h"

#include <algorithm>
#include <span>

namespace tavix::profiling {

/// Orders integers of any size that are sorted by their doubles: brings those with equal doubles into order.
inline void orderLargeIntegers(std::span<Keyed> rows, const EntryList& entries) {
    for (std::size_t first = 0; first < rows.size();) {
        std::size_t end = first + 1;
        while (end < rows.size() && rows[end].key == rows[first].key)
            ++end;
        std::stable_sort(rows.begin() + static_cast<std::ptrdiff_t>(first),
                         rows.begin() + static_cast<std::ptrdiff_t>(end), [&](const Keyed& a, const Keyed& b) {
                             return forms::compareIntegers(entries[a.index].text(), entries[b.index].text()) < 0;
                         });
        first = end;
    }
}

} // namespace tavix::profiling
