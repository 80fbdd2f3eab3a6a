#pragma once

#include "base/LibraryDate.h"

#include <unordered_map>
#include <vector>

namespace tavix {

class PrViewer;

/// A metric of all fields of a table over the last runs of the current job up to the current one.
struct MetricHistory {
    std::vector<int> runs;          ///< the oldest first; those that have the table
    std::vector<LibraryDate> dates; ///< of the runs
    /// By field id, a figure for each run; NaN where the run has no field, no value, or one that is not a number.
    std::unordered_map<int, std::vector<double>> figures;

    /// The figures of a field; empty for a field that no run has.
    [[nodiscard]] const std::vector<double>& Of(int fieldId) const;
};

/// Reads it with one query. Throws GenException when the repository fails.
[[nodiscard]] MetricHistory readMetricHistory(PrViewer& viewer, int tableId, int metricId, int mostRuns);

} // namespace tavix
