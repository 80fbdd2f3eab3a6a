#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Dates as units of 100 ns since 1970-01-01 00:00 UTC, from the year 1 to the year 9999: what a value has to look like
/// to be one, for profiling as for expressions (docs/definitions.md).
namespace tavix {

inline constexpr std::int64_t kTicksPerSecond = 10'000'000;
inline constexpr std::int64_t kTicksPerDay = 86'400 * kTicksPerSecond;

/// ISO 8601 and nothing around it: "2026-11-21", "2026-11-21 08:15", "2026-11-21T08:15:00.5+01:00". Without an offset
/// the time is taken as UTC.
[[nodiscard]] std::optional<std::int64_t> parseDate(std::string_view text);
/// "2026-11-21", with " 08:15:00" behind it when the time is not midnight, and a fraction when there is one.
[[nodiscard]] std::string formatDate(std::int64_t ticks);

/// Days since 1970-01-01, down to the day in which the instant lies.
[[nodiscard]] std::int64_t dayOf(std::int64_t ticks);

struct CalendarDay {
    int year = 0;
    int month = 0;   ///< 1 to 12
    int day = 0;     ///< 1 to 31
    int weekday = 0; ///< 1 Monday to 7 Sunday
};
[[nodiscard]] CalendarDay calendarDay(std::int64_t ticks);
/// Whether the instant lies in the years that are supported.
[[nodiscard]] bool isSupportedDate(std::int64_t ticks);

} // namespace tavix
