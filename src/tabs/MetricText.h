#pragma once

#include "base/KvbString.h"
#include "grid/CUGDataSource.h"
#include "report/FitFigures.h"

#include <optional>
#include <string>
#include <string_view>

namespace tavix {

/// The text for a metric without a value.
inline constexpr std::string_view kUnknownMetric = "(Unknown)";

/// The cell of a metric of a field whose figures have the type of this code: the full value as text, and painted what
/// the eye needs of it, which is metricText() for rounded metrics, digits in groups for counts, and two decimals and
/// "%" with a bar for shares. Values of the data are painted as they are. The state of a metric without a value is
/// Unknown.
[[nodiscard]] GridCell metricCell(int metricId, std::string_view typeCode, const KvbString& value);
/// A metric's value as displayed. For numeric figures (type codes I and R), mean, standard deviation and standard error
/// of 7 or more characters are rounded to at most 6 decimal places, so that fewer than 7 characters remain if possible.
/// All other values are displayed unchanged.
[[nodiscard]] std::string metricText(int metricId, std::string_view typeCode, std::string_view value);
/// The mark "(sample)" for a metric that a run over a sample computes from the sampled records only; "" for all others.
[[nodiscard]] std::string sampleMark(int metricId, bool isSample);
/// The marks after the name of a metric: "(sample)", "(fits)" for one over the values that fit, "(sample, fits)", "".
[[nodiscard]] std::string figureMark(int metricId, bool isSample, const std::optional<FitFigures>& fits);
/// Over which values the metric is, for a tooltip; "" for one of all values.
[[nodiscard]] std::string fitToolTip(int metricId, const std::optional<FitFigures>& fits);
/// Left for texts, types and flags, right for numbers.
[[nodiscard]] CellAlignment metricAlignment(int metricId);

} // namespace tavix
