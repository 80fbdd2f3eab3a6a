#pragma once

#include "access/ProfileCursor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

/// The most frequent values or patterns of a field, in the repository's order, and the sum of the others.
struct Distribution {
    struct Entry {
        KvbString value;
        std::int64_t count = 0;
    };
    std::vector<Entry> entries;
    std::int64_t total = 0;        ///< sum of all counts, the base of the percentages
    std::int64_t other = 0;        ///< the count of the "Other" row, which exists unless this is 0
    std::int64_t otherEntries = 0; ///< how many entries after the limit were counted; those not read are not
    std::int64_t otherNulls = 0;   ///< the count of null among them
    std::string warning;           ///< about rows for which the filter could not be evaluated; "" if there are none
};

/// The first `limit` values of a getFreqDist cursor. Reading stops there if the field's total is known; otherwise, for
/// filtered rows, all rows are read to sum and count them. "Other" is the total minus the entries. Throws as the cursor
/// does.
[[nodiscard]] Distribution readValueDistribution(ProfileCursor& rows, std::int64_t limit,
                                                 std::optional<std::int64_t> knownTotal);

/// The first `limit` patterns of a getPatternDist cursor. All rows are summed, and "Other" is the sum of the rows after
/// the limit. The two rules differ on purpose.
[[nodiscard]] Distribution readPatternDistribution(ProfileCursor& rows, std::int64_t limit);

} // namespace tavix
