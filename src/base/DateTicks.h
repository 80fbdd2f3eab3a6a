#pragma once

#include "base/Clock.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Dates as units of 100 ns since 1970-01-01 00:00 UTC, from the year 1 to the year 9999. Defines which texts are
/// dates, for profiling and for expressions (docs/definitions.md).
namespace tavix {

inline constexpr std::int64_t kTicksPerSecond = 10'000'000;
inline constexpr std::int64_t kTicksPerDay = 86'400 * kTicksPerSecond;

/// Parses ISO 8601, without surrounding blanks: "2026-11-21", "2026-11-21 08:15", "2026-11-21T08:15:00.5+01:00". A time
/// without an offset is UTC.
[[nodiscard]] std::optional<std::int64_t> parseDate(std::string_view text);
/// "2026-11-21", followed by " 08:15:00" unless the time is midnight, and by a fraction if there is one.
[[nodiscard]] std::string formatDate(std::int64_t ticks);

[[nodiscard]] constexpr std::int64_t ticksOf(UtcTime time) {
    return time.time_since_epoch().count() * (kTicksPerSecond / 1000);
}

/// Days since 1970-01-01, rounded down.
[[nodiscard]] std::int64_t dayOf(std::int64_t ticks);

struct CalendarDay {
    int year = 0;
    int month = 0;   ///< 1 to 12
    int day = 0;     ///< 1 to 31
    int weekday = 0; ///< 1 Monday to 7 Sunday
};
[[nodiscard]] CalendarDay calendarDay(std::int64_t ticks);
/// Whether the instant is in the supported years.
[[nodiscard]] bool isSupportedDate(std::int64_t ticks);

} // namespace tavix
