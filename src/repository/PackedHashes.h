#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The stored form of the hashes of a field's values, see docs/formats/distribution.md.
namespace tavix::repository {

/// `hashes` must ascend and number at most kHashesPerChunk.
[[nodiscard]] std::vector<std::byte> packSortedHashes(std::span<const std::uint64_t> hashes);

/// Reads the format of packSortedHashes() and its predecessor, 8 bytes for each hash. Accepts any bytes: all but a
/// whole, undamaged chunk of ascending hashes are an error.
[[nodiscard]] Result<std::vector<std::uint64_t>> unpackHashes(std::span<const std::byte> bytes);

} // namespace tavix::repository
