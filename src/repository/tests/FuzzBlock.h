#pragma once

#include <cstddef>
#include <span>

namespace tavix::repository {

/// Reads any bytes as a packed block, as they are and with the right checksum. A block that is accepted must be
/// consistent and pack into the same rows again; aborts if not.
void fuzzBlock(std::span<const std::byte> bytes);

} // namespace tavix::repository
