#pragma once

#include <cstddef>
#include <span>

namespace tavix::repository {

/// The first byte chooses how to read the others: as a stored page, as stored offsets, both also with the right seal,
/// or as lists of ranges to pack. The result must be that of a slow reader, in bounds and ascending, and packed lists
/// must be read back; aborts if not.
void fuzzOffsetIndex(std::span<const std::byte> bytes);

} // namespace tavix::repository
