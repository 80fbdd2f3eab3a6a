#pragma once

#include "base/SettingsStore.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

/// One metric of the report as the user wants to see it. Its index in the list is its id.
struct MetricDisplay {
    std::string description;
    bool shown = false;
    int position = 0; ///< its place in the user's order; equal places keep the order of the ids

    bool operator==(const MetricDisplay&) const = default;
};

/// The choice as it is stored: "S7" is shown at place 7, "U3" hidden. Another first letter hides too, no digits are
/// place 0, and no text at all is hidden at place 0.
[[nodiscard]] MetricDisplay parseMetricChoice(std::string_view text);
[[nodiscard]] std::string formatMetricChoice(const MetricDisplay& metric);

/// Gives each entry of `metrics` the choice that is stored for its index; descriptions stay.
void readMetricChoices(const SettingsStore& store, std::span<MetricDisplay> metrics);
/// Writes the others too when one fails.
Status writeMetricChoices(SettingsStore& store, std::span<const MetricDisplay> metrics);
/// Every standard metric with its stored choice: what can be chosen while no report is open.
[[nodiscard]] std::vector<MetricDisplay> standardMetricDisplay(const SettingsStore& store);

/// On a first start, when no metric has a choice yet, stores one that shows all of them in the order of their ids.
Status writeFirstStartDefaults(SettingsStore& store);

/// The ids in the user's order.
[[nodiscard]] std::vector<int> metricOrder(std::span<const MetricDisplay> metrics);
/// The same without the hidden ones.
[[nodiscard]] std::vector<int> shownMetrics(std::span<const MetricDisplay> metrics);

} // namespace tavix
