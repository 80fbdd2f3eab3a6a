#pragma once

#include "base/Metrics.h"

namespace tavix {

/// The catalogue's record of a metric; valid for the lifetime of the program.
using metric_info = MetricInfo;

/// Null for a number outside the catalogue.
[[nodiscard]] inline const metric_info* pr_get_metric_info(int metricId) {
    return findMetric(metricId);
}

} // namespace tavix
