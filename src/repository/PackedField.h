#pragma once

#include "base/Result.h"
#include "repository/PackedDistribution.h"

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavix::repository {

/// Of the sorted hashes of a field's values, how many stand in one chunk; the last chunk may have fewer.
inline constexpr std::size_t kHashesPerChunk = std::size_t{128} * 1024;

/// The distributions of a field, packed before its run began and handed over piece by piece, so that no list of all
/// rows is ever needed. Each is read once, from its beginning; what is handed out lives until the next call. A failure
/// ends the run.
class PackedField {
  public:
    virtual ~PackedField() = default;

    [[nodiscard]] virtual std::int64_t valueRows() const = 0;
    [[nodiscard]] virtual std::uint64_t valueSum() const = 0;
    [[nodiscard]] virtual std::int64_t patternRows() const = 0;
    [[nodiscard]] virtual std::uint64_t patternSum() const = 0;

    /// False behind the last one.
    [[nodiscard]] virtual Result<bool> nextValues(PackedBlock& block) = 0;
    [[nodiscard]] virtual Result<bool> nextPatterns(PackedBlock& block) = 0;
    /// The hashes of all values but null, ascending: kHashesPerChunk each time, as packSortedHashes() has them.
    [[nodiscard]] virtual Result<bool> nextHashes(std::span<const std::byte>& chunk) = 0;
};

} // namespace tavix::repository
