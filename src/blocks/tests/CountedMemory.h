#pragma once

#include <cstddef>

/// Counts the heap memory of the test program, all of which comes from the operators new of CountedMemory.cpp.
namespace tavix::expression::testing {

/// Counts during its lifetime. Above `most` bytes operator new throws, as when memory is exhausted.
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
