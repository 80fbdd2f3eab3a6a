#pragma once

#include "base/NumberText.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace tavix {

/// A count in groups of three digits: "1,234,567".
[[nodiscard]] inline std::string groupedCount(std::int64_t count) {
    return formatGrouped(count);
}

/// A share of 100 % for people: "0.36 %". A share that only rounds to nothing or to all is "< 0.01 %" or "> 99.99 %".
[[nodiscard]] inline std::string shareText(double percent) {
    constexpr int kPlaces = 2;
    constexpr double kLeast = 0.005;
    if (percent > 0 && percent < kLeast)
        return "< 0.01 %";
    if (percent < 100 && percent >= 100 - kLeast)
        return "> 99.99 %";
    return formatFixed(percent, kPlaces) + " %";
}

/// A count with its noun: "1 table", "3 tables".
[[nodiscard]] inline std::string countOf(std::int64_t count, std::string_view noun) {
    std::string text = groupedCount(count);
    text += ' ';
    text += noun;
    if (count != 1)
        text += 's';
    return text;
}

} // namespace tavix
