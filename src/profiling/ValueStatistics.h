#pragma once

#include "base/Result.h"
#include "findings/OrderedValues.h"
#include "profiling/StopSignal.h"
#include "profiling/ValueKey.h"
#include "profiling/ValueWalk.h"
#include "repository/Facts.h"

#include <cstdint>

namespace tavix::profiling {

/// Sets the metrics that need the values in ascending order: minimum, maximum, mode, median, percentiles, mean,
/// deviation, outliers, and the histogram of numbers and dates. `walk` gives the values that count, at least one;
/// `rows` is the sum of their counts. The same walk gives bit-identical metrics whether the values are in memory or in
/// a file. Sets the numbers or dates of `ordered`, whose moment must be set.
[[nodiscard]] Status computeStatistics(repository::FieldFacts& facts, ValueWalk& walk, KeyForm form, std::uint64_t rows,
                                       findings::OrderedFigures& ordered, StopSignal& stop);

} // namespace tavix::profiling
