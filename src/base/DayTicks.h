#pragma once

#include "base/DateTicks.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// The parts of reading a date that every date of a run passes.
namespace tavix {

/// The instant at which a day of the year 1 or later begins; none if that day does not exist. Takes half the time of
/// std::chrono.
[[nodiscard]] inline std::optional<std::int64_t> ticksOfDay(int year, int month, int day) {
    // The days of a year before each month that has no leap day before it.
    constexpr std::array<int, 12> kDaysBefore{0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    constexpr std::array<int, 12> kDaysIn{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    constexpr int kDaysBefore1970 = 719'162; // from 0001-01-01 on
    if (year < 1 || month < 1 || month > 12 || day < 1)
        return std::nullopt;
    const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    const auto index = static_cast<std::size_t>(month - 1);
    if (day > kDaysIn[index] + (isLeap && month == 2 ? 1 : 0))
        return std::nullopt;
    const int before = year - 1;
    const int days = before * 365 + before / 4 - before / 100 + before / 400 + kDaysBefore[index] +
                     (isLeap && month > 2 ? 1 : 0) + day - 1;
    return (days - kDaysBefore1970) * kTicksPerDay;
}

/// The two digits at `at`; far below 0 if they are none.
[[nodiscard]] inline int twoDigits(std::string_view text, std::size_t at) {
    constexpr int kNone = -100'000;
    const auto high = static_cast<unsigned>(text[at] - '0');
    const auto low = static_cast<unsigned>(text[at + 1] - '0');
    return high < 10 && low < 10 ? static_cast<int>(high * 10 + low) : kNone;
}

} // namespace tavix
