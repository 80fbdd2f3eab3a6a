#pragma once

#include "access/ProfileCursor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// The most frequent values or patterns of a field, in the repository's order, and what the others come to.
struct Distribution {
    struct Entry {
        KvbString value;
        std::int64_t count = 0;
    };
    std::vector<Entry> entries;
    std::int64_t total = 0; ///< of all counts: what percentages are a share of
    std::int64_t other = 0; ///< the count of the "Other" row; there is none for 0
    std::string warning;    ///< of rows that a filter left out for another reason than its condition; "" without
};

/// The first `limit` values of a getFreqDist cursor. With the known total of the field the walk stops there; without
/// one, as the rows of a filter are read, it goes on to the end and sums them. "Other" is what the total has beyond
/// the entries. Throws as the cursor does.
[[nodiscard]] Distribution readValueDistribution(ProfileCursor& rows, std::int64_t limit,
                                                 std::optional<std::int64_t> knownTotal);

/// The first `limit` patterns of a getPatternDist cursor. Every row is summed, and "Other" is the sum of the rows past
/// the limit. The two rules differ on purpose.
[[nodiscard]] Distribution readPatternDistribution(ProfileCursor& rows, std::int64_t limit);

} // namespace tavix
