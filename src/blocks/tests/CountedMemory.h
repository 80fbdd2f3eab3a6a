#pragma once

#include <cstddef>

/// What the test program takes from the heap, all of it through the operators new of CountedMemory.cpp.
namespace tavix::expression::testing {

/// Counts while it lives; beyond `most` bytes, operator new throws as when there is no more memory.
class CountedMemory {
  public:
    explicit CountedMemory(std::size_t most = static_cast<std::size_t>(-1));
    CountedMemory(const CountedMemory&) = delete;
    CountedMemory& operator=(const CountedMemory&) = delete;
    ~CountedMemory();

    /// Bytes that were taken at once, beyond those at the beginning.
    [[nodiscard]] std::size_t peak() const;
};

} // namespace tavix::expression::testing
