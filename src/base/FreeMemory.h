#pragma once

#include <vector>

namespace tavix {

/// Clears the list and frees its memory; assigning {} would keep it.
template <typename T>
void freeMemory(std::vector<T>& list) {
    std::vector<T>().swap(list);
}

} // namespace tavix
