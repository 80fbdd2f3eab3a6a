#pragma once

#include "base/Result.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// The stored form of the hashes of a field's values, as docs/formats/distribution.md describes it.
namespace tavix::repository {

/// `hashes` must ascend and be at most kHashesPerChunk.
[[nodiscard]] std::vector<std::byte> packSortedHashes(std::span<const std::uint64_t> hashes);

/// Reads what packSortedHashes() made and the form before it, 8 bytes for each hash. Any bytes may be given: what is
/// no whole, unharmed chunk of ascending hashes is an error.
[[nodiscard]] Result<std::vector<std::uint64_t>> unpackHashes(std::span<const std::byte> bytes);

} // namespace tavix::repository
