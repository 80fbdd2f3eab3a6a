#pragma once

#include "grid/CUGDataSource.h"

#include <string>
#include <string_view>

namespace tavix {

/// The text for a metric without a value.
inline constexpr std::string_view kUnknownMetric = "(Unknown)";

/// A metric's value as displayed. For numeric fields (type codes I and R), mean, standard deviation and standard error
/// of 7 or more characters are rounded to at most 6 decimal places, so that fewer than 7 characters remain if possible.
/// All other values are displayed unchanged.
[[nodiscard]] std::string metricText(int metricId, std::string_view typeCode, std::string_view value);
/// The bar of a metric that is a percentage of all rows, as a share of the cell; kNoBar for other metrics.
[[nodiscard]] double metricBar(int metricId, std::string_view value);
/// The mark "(sample)" for a metric that a run over a sample computes from the sampled records only; "" for all others.
[[nodiscard]] std::string sampleMark(int metricId, bool isSample);
/// Left for texts, types and flags, right for numbers.
[[nodiscard]] CellAlignment metricAlignment(int metricId);

} // namespace tavix
