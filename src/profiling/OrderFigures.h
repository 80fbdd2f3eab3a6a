#pragma once

#include "base/Result.h"
#include "profiling/StopSignal.h"
#include "profiling/ValueKey.h"
#include "profiling/ValueWalk.h"
#include "repository/Facts.h"

#include <cstdint>
#include <string_view>

namespace tavix::profiling {

/// The names of the two rules for the median and the percentiles, as docs/definitions.md explains them.
inline constexpr std::string_view kLinearRule = "linear interpolation (R type 7)";
inline constexpr std::string_view kNearestRule = "nearest rank";

/// How many of the lowest and of the highest distinct values are kept as outliers.
inline constexpr std::size_t kOutliersPerSide = 10;

/// Sets the figures that follow from the values in their order: minimum to percentiles, mean, deviation, outliers.
/// `walk` gives the values that take part, at least one; `rows` is the sum of their counts. The same walk gives the
/// same figures to the last bit, wherever its values lie.
[[nodiscard]] Status computeOrderFigures(repository::FieldFacts& facts, ValueWalk& walk, KeyForm form,
                                         std::uint64_t rows, StopSignal& stop);

} // namespace tavix::profiling
