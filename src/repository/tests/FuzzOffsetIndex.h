#pragma once

#include <cstddef>
#include <span>

namespace tavix::repository {

/// The first byte says for what any bytes are taken: a stored page of places, stored offsets, both also with the seal
/// that they would need, or lists of ranges to pack. What is read must be what a slow reader reads, in bounds and
/// ascending, and what is packed must come back; aborts when it is not so.
void fuzzOffsetIndex(std::span<const std::byte> bytes);

} // namespace tavix::repository
