#pragma once

#include <xxhash.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

namespace tavix::repository {

/// A copy of a packed block or of packed hashes with the right checksum, see docs/formats/distribution.md; unchanged if
/// it is too short for one.
inline std::vector<std::byte> resealed(std::span<const std::byte> payload) {
    constexpr std::size_t kHeader = 24;
    constexpr std::size_t kChecksumAt = 16;
    std::vector<std::byte> sealed(payload.begin(), payload.end());
    if (sealed.size() < kHeader)
        return sealed;
    const std::uint64_t seed = XXH3_64bits(sealed.data(), kChecksumAt);
    const std::uint64_t sum = XXH3_64bits_withSeed(sealed.data() + kHeader, sealed.size() - kHeader, seed);
    std::memcpy(sealed.data() + kChecksumAt, &sum, sizeof sum);
    return sealed;
}

} // namespace tavix::repository
