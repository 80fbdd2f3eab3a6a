#include "repository/tests/FuzzHashes.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tavix::repository::fuzzHashes(std::as_bytes(std::span(data, size)));
    return 0;
}
