#pragma once

#include <cstddef>
#include <span>

namespace tavix::repository {

/// Reads any bytes as packed hashes, as they are and with the right checksum. Hashes that are accepted must ascend and
/// pack into the same hashes again; aborts if not.
void fuzzHashes(std::span<const std::byte> bytes);

} // namespace tavix::repository
