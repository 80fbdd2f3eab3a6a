#pragma once

#include "base/KvbDatavar.h"

#include <cmath>
#include <cstdint>

namespace tavix::profiling {

/// A whole number as such, so that it is shown without an exponent; anything else as the real it is.
[[nodiscard]] inline KvbDatavar metricValue(double value) {
    constexpr double kLargestExactWhole = 9007199254740992.0;
    if (std::fabs(value) <= kLargestExactWhole && value == std::trunc(value))
        return static_cast<std::int64_t>(value);
    return value;
}

} // namespace tavix::profiling
