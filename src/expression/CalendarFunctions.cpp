#include "expression/CalendarFunctions.h"

#include "base/Ascii.h"
#include "base/Characters.h"
#include "base/DateTicks.h"
#include "expression/Lexer.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <optional>
#include <string_view>

namespace tavix::expression::calendar_functions {

namespace {

using std::chrono::day;
using std::chrono::month;
using std::chrono::sys_days;
using std::chrono::year_month_day;

constexpr std::int64_t kMonthsOfYear = 12;
constexpr std::int64_t kMonthsOfQuarter = 3;

struct UnitWord {
    std::string_view word;
    Unit unit;
};
constexpr auto kUnits = std::to_array<UnitWord>({
    {"second", Unit::Second},
    {"minute", Unit::Minute},
    {"hour", Unit::Hour},
    {"day", Unit::Day},
    {"week", Unit::Week},
    {"month", Unit::Month},
    {"quarter", Unit::Quarter},
    {"year", Unit::Year},
});

/// The unit of this name; leaves a failure for any other text.
std::optional<Unit> unitOf(std::string_view name, Scratch& scratch) {
    const std::optional<Unit> unit = findUnit(name);
    if (!unit)
        scratch.fail(fmt::format("'{}' is not a unit of time: second, minute, hour, day, week, month, quarter or year",
                                 shortened(name, kLongestEcho)));
    return unit;
}

/// Whole units of this size since a fixed moment, rounded down.
std::int64_t quotient(std::int64_t ticks, std::int64_t size) {
    return ticks / size - (ticks % size < 0 ? 1 : 0);
}

std::int64_t monthNumber(std::int64_t ticks) {
    const CalendarDay date = calendarDay(ticks);
    return date.year * kMonthsOfYear + date.month - 1;
}

std::int64_t ticksOf(const year_month_day& date) {
    return kTicksPerDay * sys_days{date}.time_since_epoch().count();
}

/// The day of a month that is counted as monthNumber() does; a day beyond the month's end becomes its last one.
year_month_day dayInMonth(std::int64_t number, unsigned dayOfMonth) {
    const std::chrono::year_month wanted{
        std::chrono::year{static_cast<int>(quotient(number, kMonthsOfYear))},
        month{static_cast<unsigned>(number - quotient(number, kMonthsOfYear) * kMonthsOfYear) + 1}};
    const year_month_day last{wanted / std::chrono::last};
    return wanted / std::min(day{dayOfMonth}, last.day());
}

} // namespace

std::optional<Unit> findUnit(std::string_view name) {
    const std::string_view singular = name.ends_with('s') ? name.substr(0, name.size() - 1) : name;
    for (const UnitWord& unit : kUnits) {
        if (equalsIgnoringAsciiCase(singular, unit.word))
            return unit.unit;
    }
    return std::nullopt;
}

std::int64_t unitsUntil(std::int64_t ticks, Unit unit) {
    switch (unit) {
    case Unit::Second:
        return quotient(ticks, kTicksPerSecond);
    case Unit::Minute:
        return quotient(ticks, 60 * kTicksPerSecond);
    case Unit::Hour:
        return quotient(ticks, 3600 * kTicksPerSecond);
    case Unit::Day:
        return dayOf(ticks);
    case Unit::Week:
        // 1970-01-01 was a Thursday.
        return quotient(dayOf(ticks) + 3, 7);
    case Unit::Month:
        return monthNumber(ticks);
    case Unit::Quarter:
        return quotient(monthNumber(ticks), kMonthsOfQuarter);
    case Unit::Year:
        return calendarDay(ticks).year;
    }
    return 0;
}

std::int64_t beginningOf(std::int64_t ticks, Unit unit) {
    switch (unit) {
    case Unit::Second:
        return unitsUntil(ticks, Unit::Second) * kTicksPerSecond;
    case Unit::Minute:
        return unitsUntil(ticks, Unit::Minute) * 60 * kTicksPerSecond;
    case Unit::Hour:
        return unitsUntil(ticks, Unit::Hour) * 3600 * kTicksPerSecond;
    case Unit::Day:
        return dayOf(ticks) * kTicksPerDay;
    case Unit::Week:
        // 0001-01-01 is a Monday, so no week begins before the supported years.
        return (dayOf(ticks) - calendarDay(ticks).weekday + 1) * kTicksPerDay;
    case Unit::Month:
        return ticksOf(dayInMonth(monthNumber(ticks), 1));
    case Unit::Quarter:
        return ticksOf(dayInMonth(quotient(monthNumber(ticks), kMonthsOfQuarter) * kMonthsOfQuarter, 1));
    case Unit::Year:
        return ticksOf(dayInMonth(calendarDay(ticks).year * kMonthsOfYear, 1));
    }
    return ticks;
}

std::int64_t monthEndOf(std::int64_t ticks) {
    constexpr unsigned kLongestMonth = 31;
    return ticksOf(dayInMonth(monthNumber(ticks), kLongestMonth));
}

std::int64_t quarterOf(std::int64_t ticks) {
    return (calendarDay(ticks).month - 1) / kMonthsOfQuarter + 1;
}

Value addMonths(Arguments arguments, Scratch& /*scratch*/) {
    constexpr std::int64_t kMost = 10'000 * kMonthsOfYear;
    const std::int64_t months = arguments[1].integer;
    if (months < -kMost || months > kMost)
        return {};
    const std::int64_t ticks = arguments[0].integer;
    const std::int64_t number = monthNumber(ticks) + months;
    if (number < kMonthsOfYear || number >= kMost)
        return {};
    const std::int64_t inDay = ticks - dayOf(ticks) * kTicksPerDay;
    return Value::ofDate(ticksOf(dayInMonth(number, static_cast<unsigned>(calendarDay(ticks).day))) + inDay);
}

Value dateDifference(Arguments arguments, Scratch& scratch) {
    const std::optional<Unit> unit = arguments.size() > 2 ? unitOf(arguments[2].text, scratch) : Unit::Day;
    if (!unit)
        return {};
    return Value::ofInteger(unitsUntil(arguments[1].integer, *unit) - unitsUntil(arguments[0].integer, *unit));
}

Value dayOfYear(Arguments arguments, Scratch& /*scratch*/) {
    const std::int64_t ticks = arguments[0].integer;
    const year_month_day first{std::chrono::year{calendarDay(ticks).year}, month{1}, day{1}};
    return Value::ofInteger(dayOf(ticks) - dayOf(ticksOf(first)) + 1);
}

Value lastDay(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofDate(monthEndOf(arguments[0].integer));
}

Value quarter(Arguments arguments, Scratch& /*scratch*/) {
    return Value::ofInteger(quarterOf(arguments[0].integer));
}

Value startOf(Arguments arguments, Scratch& scratch) {
    const std::optional<Unit> unit = unitOf(arguments[1].text, scratch);
    return unit ? Value::ofDate(beginningOf(arguments[0].integer, *unit)) : Value{};
}

Value week(Arguments arguments, Scratch& /*scratch*/) {
    const std::int64_t ticks = arguments[0].integer;
    // The week belongs to the year of its Thursday.
    const std::int64_t thursday = dayOf(ticks) - calendarDay(ticks).weekday + 4;
    // The Thursday of the last week of 9999 is in that year; that of the first week of the year 1 is as well.
    const int year = calendarDay(thursday * kTicksPerDay).year;
    const year_month_day first{std::chrono::year{year}, month{1}, day{1}};
    return Value::ofInteger((thursday - dayOf(ticksOf(first))) / 7 + 1);
}

} // namespace tavix::expression::calendar_functions
