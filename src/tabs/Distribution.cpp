#include "tabs/Distribution.h"

#include "access/Layouts.h"

#include <limits>

namespace tavix {

namespace {

void add(std::int64_t& sum, std::int64_t count) {
    if (__builtin_add_overflow(sum, count, &sum))
        sum = count < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
}

/// Counts the cursor's row among those that "Other" sums.
void addToOther(Distribution& distribution, const ProfileCursor& rows, int valueColumn, std::int64_t count) {
    ++distribution.otherEntries;
    if (rows.isColumnNull(valueColumn))
        add(distribution.otherNulls, count);
}

bool isFull(const Distribution& distribution, std::int64_t limit) {
    return static_cast<std::int64_t>(distribution.entries.size()) >= limit;
}

} // namespace

Distribution readValueDistribution(ProfileCursor& rows, std::int64_t limit, std::optional<std::int64_t> knownTotal) {
    Distribution distribution;
    std::int64_t shown = 0;
    std::int64_t all = 0;
    // The limit is checked first: reading one more row may mean decoding another block.
    while (!(knownTotal && isFull(distribution, limit)) && rows.next()) {
        const std::int64_t count = rows.getColumnInt64(layout::FreqCount);
        add(all, count);
        if (isFull(distribution, limit)) {
            addToOther(distribution, rows, layout::FreqValue, count);
            continue;
        }
        distribution.entries.push_back({rows.getColumnValue(layout::FreqValue), count});
        add(shown, count);
    }
    distribution.warning = rows.getWarning().str();
    distribution.total = knownTotal.value_or(all);
    distribution.other = distribution.total > shown ? distribution.total - shown : 0;
    return distribution;
}

Distribution readPatternDistribution(ProfileCursor& rows, std::int64_t limit) {
    Distribution distribution;
    while (rows.next()) {
        const std::int64_t count = rows.getColumnInt64(layout::PatternCountColumn);
        add(distribution.total, count);
        if (isFull(distribution, limit)) {
            add(distribution.other, count);
            addToOther(distribution, rows, layout::PatternText, count);
        } else {
            distribution.entries.push_back({rows.getColumnValue(layout::PatternText), count});
        }
    }
    distribution.warning = rows.getWarning().str();
    return distribution;
}

} // namespace tavix
