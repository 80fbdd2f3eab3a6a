#pragma once

#include "base/Result.h"
#include "repository/PackedDistribution.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavix::repository {

/// The number of a field's sorted value hashes in one chunk; the last chunk may have fewer.
inline constexpr std::size_t kHashesPerChunk = std::size_t{128} * 1024;

/// The distributions of a field, packed before its run begins and passed on piece by piece, so that no list of all rows
/// is needed. Each is read once, from its beginning; a piece is valid until the next call. A failure ends the run.
class PackedField {
  public:
    virtual ~PackedField() = default;

    [[nodiscard]] virtual std::int64_t valueRows() const = 0;
    [[nodiscard]] virtual std::uint64_t valueSum() const = 0;
    [[nodiscard]] virtual std::int64_t patternRows() const = 0;
    [[nodiscard]] virtual std::uint64_t patternSum() const = 0;

    /// False after the last one.
    [[nodiscard]] virtual Result<bool> nextValues(PackedBlock& block) = 0;
    [[nodiscard]] virtual Result<bool> nextPatterns(PackedBlock& block) = 0;
    /// The hashes of all non-null values, ascending, kHashesPerChunk at a time, for packSortedHashes().
    [[nodiscard]] virtual Result<bool> nextHashes(std::span<const std::byte>& chunk) = 0;
};

} // namespace tavix::repository
