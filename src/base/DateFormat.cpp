#include "base/DateFormat.h"

#include "base/Ascii.h"
#include "base/DateTicks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string>

namespace tavix {

namespace {

constexpr std::size_t kLongestFormat = 100;
constexpr std::array<std::string_view, 12> kMonths{"january",   "february", "march",    "april",
                                                   "may",       "june",     "july",     "august",
                                                   "september", "october",  "november", "december"};

/// Takes `least` to `most` digits off the beginning; nothing if there are fewer.
std::optional<int> takeDigits(std::string_view& text, std::size_t least, std::size_t most) {
    int value = 0;
    std::size_t taken = 0;
    while (taken < most && taken < text.size() && isAsciiDigit(text[taken]))
        value = value * 10 + (text[taken++] - '0');
    if (taken < least)
        return std::nullopt;
    text.remove_prefix(taken);
    return value;
}

/// Takes the name of a month, the whole one if it is there; its number from 1.
std::optional<int> takeMonth(std::string_view& text) {
    constexpr std::size_t kShort = 3;
    for (std::size_t i = 0; i < kMonths.size(); ++i) {
        for (const std::size_t size : {kMonths[i].size(), kShort}) {
            if (equalsIgnoringAsciiCase(text.substr(0, size), kMonths[i].substr(0, size))) {
                text.remove_prefix(size);
                return static_cast<int>(i) + 1;
            }
        }
    }
    return std::nullopt;
}

/// Takes AM or PM; whether it is PM.
std::optional<int> takeHalfDay(std::string_view& text) {
    const std::string_view mark = text.substr(0, 2);
    const bool isPm = equalsIgnoringAsciiCase(mark, "pm");
    if (!isPm && !equalsIgnoringAsciiCase(mark, "am"))
        return std::nullopt;
    text.remove_prefix(2);
    return isPm ? 1 : 0;
}

} // namespace

Result<DateFormat> DateFormat::parse(std::string_view format) {
    struct Letters {
        std::string_view text;
        Kind kind;
        std::uint8_t least;
        std::uint8_t most;
    };
    static constexpr auto kLetters = std::to_array<Letters>({
        {"yyyy", Kind::Year, 4, 4},
        {"yy", Kind::Year, 2, 2},
        {"MMM", Kind::MonthName, 0, 0},
        {"MM", Kind::Month, 2, 2},
        {"M", Kind::Month, 1, 2},
        {"dd", Kind::Day, 2, 2},
        {"d", Kind::Day, 1, 2},
        {"HH", Kind::Hour, 2, 2},
        {"H", Kind::Hour, 1, 2},
        {"hh", Kind::HalfDayHour, 2, 2},
        {"h", Kind::HalfDayHour, 1, 2},
        {"mm", Kind::Minute, 2, 2},
        {"m", Kind::Minute, 1, 2},
        {"ss", Kind::Second, 2, 2},
        {"s", Kind::Second, 1, 2},
        {"a", Kind::HalfDay, 0, 0},
    });
    if (format.size() > kLongestFormat)
        return Error{fmt::format("a date format has at most {} bytes", kLongestFormat)};
    DateFormat made;
    const auto count = [&made](std::initializer_list<Kind> kinds) {
        return std::ranges::count_if(
            made.m_parts, [&](const Part& part) { return std::ranges::find(kinds, part.kind) != kinds.end(); });
    };
    while (!format.empty()) {
        if (isAsciiLetter(format.front())) {
            const std::size_t size = std::min(format.find_first_not_of(format.front()), format.size());
            const auto* const found = std::ranges::find(kLetters, format.substr(0, size), &Letters::text);
            if (found == kLetters.end())
                return Error{fmt::format("\"{}\" has no meaning in a date format; put literal letters in single quotes",
                                         format.substr(0, size))};
            made.m_parts.push_back({found->kind, found->least, found->most, 0});
            format.remove_prefix(size);
        } else if (format.front() == '\'') {
            const std::size_t end = format.find('\'', 1);
            if (end == std::string_view::npos)
                return Error{"a quote in the date format is not closed"};
            for (const char c : end == 1 ? std::string_view("'") : format.substr(1, end - 1))
                made.m_parts.push_back({Kind::Literal, 1, 1, c});
            format.remove_prefix(end + 1);
        } else {
            made.m_parts.push_back({Kind::Literal, 1, 1, format.front()});
            format.remove_prefix(1);
        }
    }
    if (count({Kind::Year}) != 1 || count({Kind::Month, Kind::MonthName}) != 1 || count({Kind::Day}) != 1)
        return Error{"a date format has the year, the month and the day once each, as in dd.MM.yyyy"};
    if (count({Kind::HalfDayHour}) != count({Kind::HalfDay}) || count({Kind::Hour, Kind::HalfDayHour}) > 1 ||
        count({Kind::Minute}) > 1 || count({Kind::Second}) > 1)
        return Error{"a date format has each part of the time at most once, and hh together with a"};
    return made;
}

std::optional<std::int64_t> DateFormat::read(std::string_view text) const {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
    bool isHalfDay = false;
    bool isAfternoon = false;
    for (const Part& part : m_parts) {
        std::optional<int> value;
        switch (part.kind) {
        case Kind::Literal:
            if (!text.starts_with(part.literal))
                return std::nullopt;
            text.remove_prefix(1);
            continue;
        case Kind::MonthName:
            value = takeMonth(text);
            break;
        case Kind::HalfDay:
            value = takeHalfDay(text);
            break;
        default:
            value = takeDigits(text, part.least, part.most);
        }
        if (!value)
            return std::nullopt;
        switch (part.kind) {
        case Kind::Year:
            year = part.most == 4 ? *value : *value + (*value < 69 ? 2000 : 1900);
            break;
        case Kind::Month:
        case Kind::MonthName:
            month = *value;
            break;
        case Kind::Day:
            day = *value;
            break;
        case Kind::HalfDayHour:
            isHalfDay = true;
            hour = *value;
            break;
        case Kind::Hour:
            hour = *value;
            break;
        case Kind::Minute:
            minute = *value;
            break;
        case Kind::Second:
            second = *value;
            break;
        case Kind::HalfDay:
            isAfternoon = *value != 0;
            break;
        case Kind::Literal:
            break;
        }
    }
    if (isHalfDay) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (isAfternoon ? 12 : 0);
    }
    const std::chrono::year_month_day date{std::chrono::year{year}, std::chrono::month{static_cast<unsigned>(month)},
                                           std::chrono::day{static_cast<unsigned>(day)}};
    if (!text.empty() || year < 1 || !date.ok() || hour > 23 || minute > 59 || second > 59)
        return std::nullopt;
    const std::int64_t seconds = std::int64_t{hour} * 3600 + std::int64_t{minute} * 60 + second;
    return kTicksPerDay * std::chrono::sys_days{date}.time_since_epoch().count() + seconds * kTicksPerSecond;
}

} // namespace tavix
