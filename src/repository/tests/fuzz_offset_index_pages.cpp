#include "repository/tests/FuzzOffsetIndex.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavix::repository::fuzzOffsetIndex(std::as_bytes(std::span(data, size)));
    return 0;
}
