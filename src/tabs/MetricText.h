#pragma once

#include "grid/CUGDataSource.h"

#include <string>
#include <string_view>

namespace tavix {

/// What stands for a metric that has no value.
inline constexpr std::string_view kUnknownMetric = "(Unknown)";

/// The value of a metric as it is shown. Mean and deviations of numeric fields (type codes I and R) that are long are
/// rounded to as many decimal places, 6 at most, as leave fewer than 7 characters; everything else stays as it is.
[[nodiscard]] std::string metricText(int metricId, std::string_view typeCode, std::string_view value);
/// The share that a metric's value, a percentage of all rows, takes of a bar; kNoBar for what is no percentage.
[[nodiscard]] double metricBar(int metricId, std::string_view value);
/// The mark beside the name of a metric that, in a run over a sample, is one of the sampled records alone: "(sample)";
/// "" for all others.
[[nodiscard]] std::string sampleMark(int metricId, bool isSample);
/// Texts, types and places to the left, figures to the right.
[[nodiscard]] CellAlignment metricAlignment(int metricId);

} // namespace tavix
