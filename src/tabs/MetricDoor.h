#pragma once

#include "base/KvbString.h"
#include "base/Result.h"
#include "grid/CUGDataSource.h"

#include <string_view>
#include <vector>

namespace tavix {

class PrViewer;

/// Which source rows a metric's cell opens.
enum class MetricDoor {
    None,
    Nulls,
    Blanks,
    Value, ///< the rows with the value in the cell: minimum, maximum or mode
};

/// None for a metric without a value, a count of 0, and every other metric.
[[nodiscard]] MetricDoor doorOf(int metricId, const GridCell& cell);

/// The filter of a value distribution that leaves the blank values.
inline constexpr std::string_view kBlankFilter = "isblank(`Value`) and `Value` != ''";
/// The blank values of a field of the current run, at most `most`; reading ends with the last one.
[[nodiscard]] Result<std::vector<KvbString>> readBlanks(PrViewer& viewer, int fieldId, std::int64_t blankCount,
                                                        std::size_t most);

} // namespace tavix
