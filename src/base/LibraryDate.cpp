#include "base/LibraryDate.h"

#include <fmt/format.h>

#include <cmath>
#include <ctime>
#include <iomanip>
#include <sstream>
#include <stdexcept>

namespace tavix {

namespace {

using std::chrono::days;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr sys_days kEpoch{std::chrono::year{1899} / 12 / 30};
constexpr double kSecondsPerDay = 86400.0;
constexpr double kFirstDay = -693593; // 0001-01-01
constexpr double kLastDay = 2958465;  // 9999-12-31

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
    if (!(date >= kFirstDay && date < kLastDay + 1))
        return {};
    const auto total = std::llround(date * kSecondsPerDay);
    const auto day = static_cast<long long>(std::floor(static_cast<double>(total) / kSecondsPerDay));
    const int inDay = static_cast<int>(total - day * 86400);
    const year_month_day ymd{kEpoch + days{static_cast<int>(day)}};
    return {static_cast<int>(ymd.year()),
            static_cast<int>(static_cast<unsigned>(ymd.month())),
            static_cast<int>(static_cast<unsigned>(ymd.day())),
            inDay / 3600,
            inDay / 60 % 60,
            inDay % 60};
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

std::string formatIsoUtc(UtcTime time) {
    const auto day = std::chrono::floor<days>(time);
    const year_month_day ymd{day};
    const std::chrono::hh_mm_ss clock{std::chrono::floor<std::chrono::seconds>(time - day)};
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(ymd.year()),
                       static_cast<unsigned>(ymd.month()), static_cast<unsigned>(ymd.day()), clock.hours().count(),
                       clock.minutes().count(), clock.seconds().count());
}

} // namespace tavix
