#pragma once

#include "base/KvbString.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

/// What became of the values of a field, or of its patterns, between two runs.
namespace tavix {

/// A stored distribution that can be walked more than once.
class CountedTexts {
  public:
    /// False ends the walk.
    using Visitor = std::function<bool(std::string_view text, bool isNull, std::int64_t count)>;

    virtual ~CountedTexts() = default;

    [[nodiscard]] virtual std::int64_t size() const = 0;
    /// The rows that shares are shares of.
    [[nodiscard]] virtual std::int64_t rows() const = 0;
    /// From the first to the last, as they are shown: the most frequent first, then null, then by code point.
    virtual void walk(const Visitor& visitor) = 0;
};

struct ValueChange {
    KvbString text; ///< null is the null value; what is longer than kLongestText is cut
    std::int64_t before = 0;
    std::int64_t after = 0;

    bool operator==(const ValueChange&) const = default;
};

struct DistributionChanges {
    struct Group {
        std::int64_t texts = 0;      ///< how many there are
        std::int64_t rowsBefore = 0; ///< the rows that have them
        std::int64_t rowsAfter = 0;
        std::vector<ValueChange> top;
    };
    std::int64_t rowsBefore = 0; ///< of all texts
    std::int64_t rowsAfter = 0;
    Group appeared; ///< the most frequent first
    Group vanished; ///< the most frequent first
    /// In both with another count, the one whose share of the rows changed most first; then by the change of the count,
    /// then null, then by code point.
    Group moved;
};

inline constexpr std::size_t kLongestText = 4096; ///< bytes

struct ComparisonLimits {
    std::size_t top = 10; ///< texts of each group
    /// Bytes for matching the texts; a distribution that needs more is walked once more for every further part.
    std::size_t memory = std::size_t{256} << 20;
};

/// Matches texts by a 128-bit hash, of which more than 80 bits are compared, so that memory depends neither on their
/// length nor, beyond the limit, on their number. The time grows with the number of texts, and, where they are more
/// than the memory holds, with the number of parts.
[[nodiscard]] DistributionChanges compareDistributions(CountedTexts& before, CountedTexts& after,
                                                       const ComparisonLimits& limits);

} // namespace tavix
