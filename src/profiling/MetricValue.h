#pragma once

#include "base/KvbDatavar.h"
#include "expression/Value.h"

#include <cmath>
#include <cstdint>

namespace tavix::profiling {

/// The value that a metric stores for a number: an integer for a whole number, so that it is shown without an exponent,
/// else a real.
[[nodiscard]] inline KvbDatavar metricValue(double value) {
    constexpr double kLargestExactWhole = 9007199254740992.0;
    if (std::fabs(value) <= kLargestExactWhole && value == std::trunc(value))
        return static_cast<std::int64_t>(value);
    return value;
}
/// The value that a metric stores for the result of an expression: dates and booleans as text.
[[nodiscard]] KvbDatavar metricValue(const expression::Value& value);

} // namespace tavix::profiling
