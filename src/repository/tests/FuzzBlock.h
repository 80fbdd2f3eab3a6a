#pragma once

#include <cstddef>
#include <span>

namespace tavix::repository {

/// Takes any bytes for a packed block, as they are and once more with the checksum that they would need. What is
/// understood must hold together and pack into the same rows again; aborts when it does not.
void fuzzBlock(std::span<const std::byte> bytes);

} // namespace tavix::repository
