#pragma once

#include "base/KvbString.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string_view>
#include <vector>

/// The changes in the values of a field, or in its patterns, between two runs.
namespace tavix {

/// A stored distribution. It can be walked more than once.
class CountedTexts {
  public:
    /// Returns false to end the walk.
    using Visitor = std::function<bool(std::string_view text, bool isNull, std::int64_t count)>;

    virtual ~CountedTexts() = default;

    [[nodiscard]] virtual std::int64_t size() const = 0;
    /// The number of rows that shares refer to.
    [[nodiscard]] virtual std::int64_t rows() const = 0;
    /// Visits the texts in the order in which they are shown: by descending count, null first, then by code point.
    virtual void walk(const Visitor& visitor) = 0;
};

struct ValueChange {
    KvbString text; ///< null for the null value; cut after kLongestText bytes
    std::int64_t before = 0;
    std::int64_t after = 0;

    bool operator==(const ValueChange&) const = default;
};

struct DistributionChanges {
    struct Group {
        std::int64_t texts = 0;      ///< number of texts
        std::int64_t rowsBefore = 0; ///< the rows that have them
        std::int64_t rowsAfter = 0;
        std::vector<ValueChange> top;
    };
    std::int64_t rowsBefore = 0; ///< of all texts
    std::int64_t rowsAfter = 0;
    Group appeared; ///< the most frequent first
    Group vanished; ///< the most frequent first
    /// In both runs, with different counts. The largest change of the share comes first, then the largest change of the
    /// count, then null, then by code point.
    Group moved;
    /// The rows that have another text than before, as a share of all rows: half the sum of the changes of all shares.
    double shareMoved = 0;
    /// The part of shareMoved that is due to the number of rows: what to expect if the rows that one run has more than
    /// the other were drawn at random from the other's. A text of one row is taken for a key, so such rows bring new
    /// texts.
    double shareByGrowth = 0;
};

inline constexpr std::size_t kLongestText = 4096; ///< bytes

struct ComparisonLimits {
    std::size_t top = 10; ///< texts listed in each group
    /// Bytes for matching the texts. A distribution that needs more is matched in parts, with a walk for each.
    std::size_t memory = std::size_t{256} << 20;
};

/// Matches texts by more than 80 bits of a 128-bit hash, so that the memory does not depend on their length and, above
/// the limit, not on their number. The time grows with the number of texts and the number of parts.
[[nodiscard]] DistributionChanges compareDistributions(CountedTexts& before, CountedTexts& after,
                                                       const ComparisonLimits& limits);

} // namespace tavix
