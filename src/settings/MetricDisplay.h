#pragma once

#include "base/SettingsStore.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

/// The user's choice for one metric. Its index in a list is the id of the metric.
struct MetricDisplay {
    std::string description;
    bool shown = false;
    int position = 0; ///< in the user's order; metrics with equal positions are in the order of their ids

    bool operator==(const MetricDisplay&) const = default;
};

/// Parses a stored choice: "S7" is shown at position 7, "U3" is hidden. Any other first letter hides the metric too.
/// The position is 0 when there are no digits.
[[nodiscard]] MetricDisplay parseMetricChoice(std::string_view text);
[[nodiscard]] std::string formatMetricChoice(const MetricDisplay& metric);

/// Sets each entry of `metrics` to the choice stored for its index; descriptions are unchanged.
void readMetricChoices(const SettingsStore& store, std::span<MetricDisplay> metrics);
/// Writes all choices, even when one fails.
Status writeMetricChoices(SettingsStore& store, std::span<const MetricDisplay> metrics);
/// All standard metrics with their stored choices, for the time when no report is open.
[[nodiscard]] std::vector<MetricDisplay> standardMetricDisplay(const SettingsStore& store);

/// When no metric has a stored choice yet: shows all, first those that tell most about a field, then the rest in the
/// order of their ids. Else changes nothing.
Status writeFirstStartDefaults(SettingsStore& store);

/// The ids in the user's order.
[[nodiscard]] std::vector<int> metricOrder(std::span<const MetricDisplay> metrics);
/// Like metricOrder(), without the hidden metrics.
[[nodiscard]] std::vector<int> shownMetrics(std::span<const MetricDisplay> metrics);

} // namespace tavix
