#pragma once

#include "grid/CUGDataSource.h"
#include "report/MetricHistory.h"

#include <cstdint>
#include <locale>
#include <span>
#include <string>
#include <vector>

namespace tavix {

/// The rows of a field as a bar of null, blank and filled ones, which says "12 null, 3 blank, 3,361 filled of 3,376".
/// Sorted by the share of filled rows. Empty without rows.
[[nodiscard]] GridCell filledCell(std::int64_t rows, std::int64_t nulls, std::int64_t blanks);

/// A metric over the last runs as a line, with the change since the run before: "▲ 12", "▼ 0.36 %", "=", or "new" for a
/// field that the run before did not have. Sorted by the change. Empty without figures.
[[nodiscard]] GridCell trendCell(int metricId, const std::vector<double>& figures);
/// The figures by run, the latest first.
[[nodiscard]] std::string trendToolTip(int metricId, const MetricHistory& history, const std::vector<double>& figures,
                                       const std::locale& locale);

/// The metrics of which lines can be drawn, by their ids.
[[nodiscard]] std::vector<int> trendMetrics();

} // namespace tavix
