#pragma once

#include <cstddef>
#include <span>

namespace tavix::repository {

/// Takes any bytes for packed hashes, as they are and once more with the checksum that they would need. What is
/// understood must ascend and pack into the same hashes again; aborts when it does not.
void fuzzHashes(std::span<const std::byte> bytes);

} // namespace tavix::repository
