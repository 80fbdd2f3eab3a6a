#pragma once

#include <vector>

namespace tavix {

/// Empties the list and gives its memory back. To assign {} keeps the memory for what may come.
template <typename T>
void freeMemory(std::vector<T>& list) {
    std::vector<T>().swap(list);
}

} // namespace tavix
