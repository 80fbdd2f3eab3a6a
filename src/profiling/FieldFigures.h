#pragma once

#include "profiling/ValueCounter.h"
#include "repository/Facts.h"

#include <string>
#include <string_view>
#include <vector>

namespace tavix::profiling {

/// The names of the two rules for the median and the percentiles, as docs/definitions.md explains them.
inline constexpr std::string_view kLinearRule = "linear interpolation (R type 7)";
inline constexpr std::string_view kNearestRule = "nearest rank";

/// How many of the lowest and of the highest distinct values are kept as outliers.
inline constexpr std::size_t kOutliersPerSide = 10;

/// Everything that a run says about one field, and the memory that `facts` borrows.
struct FieldFigures {
    repository::FieldFacts facts;
    std::vector<repository::ValueCount> values;
    std::vector<repository::ValueCount> patterns;
    ValueCounter patternCounter; ///< holds the texts of the patterns
};

/// Computes the figures of a column from its counted values, once per distinct value. The texts of the values stay
/// borrowed from `counter`. `ordinal` counts from 1.
[[nodiscard]] FieldFigures computeFigures(const ValueCounter& counter, const std::string& name, int ordinal);

} // namespace tavix::profiling
