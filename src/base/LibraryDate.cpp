#include "base/LibraryDate.h"

#include "base/DateTicks.h"

#include <cmath>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <stdexcept>

namespace tavix {

namespace {

using std::chrono::sys_days;

constexpr sys_days kEpoch{std::chrono::year{1899} / 12 / 30};
constexpr double kSecondsPerDay = 86400.0;

} // namespace

LibraryDate toLibraryDate(UtcTime time) {
    const auto whole = std::chrono::floor<std::chrono::seconds>(time);
    const std::time_t seconds = whole.time_since_epoch().count();
    std::tm local{};
    if (!localtime_r(&seconds, &local))
        return 0.0;
    const sys_days day{std::chrono::year{local.tm_year + 1900} / (local.tm_mon + 1) / local.tm_mday};
    const double inDay = local.tm_hour * 3600.0 + local.tm_min * 60.0 + local.tm_sec +
                         static_cast<double>((time - whole).count()) / 1000.0;
    return static_cast<double>((day - kEpoch).count()) + inDay / kSecondsPerDay;
}

DateParts decompose(LibraryDate date) {
    constexpr double kLargest = 1e7; // beyond every supported date, and its seconds fit 64 bits
    if (!(std::abs(date) < kLargest))
        return {};
    const std::int64_t seconds = std::llround(date * kSecondsPerDay);
    const std::int64_t ticks =
        seconds * kTicksPerSecond + std::int64_t{kEpoch.time_since_epoch().count()} * kTicksPerDay;
    if (!isSupportedDate(ticks))
        return {};
    const CalendarDay day = calendarDay(ticks);
    const int inDay = static_cast<int>((ticks - dayOf(ticks) * kTicksPerDay) / kTicksPerSecond);
    return {day.year, day.month, day.day, inDay / 3600, inDay / 60 % 60, inDay % 60};
}

std::string formatDateTime(const DateParts& parts, const std::locale& locale) {
    std::tm time{};
    time.tm_year = parts.year - 1900;
    time.tm_mon = parts.month - 1;
    time.tm_mday = parts.day;
    time.tm_hour = parts.hour;
    time.tm_min = parts.minute;
    time.tm_sec = parts.second;
    const std::chrono::weekday weekday{sys_days{std::chrono::year{parts.year} / static_cast<unsigned>(parts.month) /
                                                static_cast<unsigned>(parts.day)}};
    time.tm_wday = static_cast<int>(weekday.c_encoding());
    time.tm_isdst = -1;
    std::ostringstream out;
    out.imbue(locale);
    out << std::put_time(&time, "%c");
    return out.str();
}

std::locale userLocale() {
    try {
        return std::locale("");
    } catch (const std::runtime_error&) {
        return std::locale::classic();
    }
}

} // namespace tavix
