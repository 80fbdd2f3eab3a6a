#include "base/DateTicks.h"

#include "base/Ascii.h"
#include "base/DayTicks.h"

#include <fmt/format.h>

#include <chrono>

namespace tavix {

namespace {

using std::chrono::sys_days;

constexpr std::int64_t kFirst = std::int64_t{-719162} * kTicksPerDay;  // 0001-01-01
constexpr std::int64_t kBehind = std::int64_t{2932897} * kTicksPerDay; // 10000-01-01
constexpr std::int64_t kFinestDigits = 7;

/// Parses a time from the left. After a failed step all others fail.
class Steps {
  public:
    explicit Steps(std::string_view text) : m_rest(text) {}

    int digits(std::size_t count, int lowest, int highest) {
        int value = 0;
        if (m_rest.size() < count)
            return giveUp();
        for (std::size_t i = 0; i < count; ++i) {
            if (!isAsciiDigit(m_rest[i]))
                return giveUp();
            value = value * 10 + (m_rest[i] - '0');
        }
        m_rest.remove_prefix(count);
        return value < lowest || value > highest ? giveUp() : value;
    }
    bool skip(std::string_view anyOf) {
        if (m_rest.empty() || anyOf.find(m_rest.front()) == std::string_view::npos)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    void need(char c) {
        if (!skip({&c, 1}))
            giveUp();
    }
    /// One to nine digits after the decimal point; digits beyond 100 ns are dropped.
    std::int64_t fraction() {
        std::int64_t ticks = 0;
        std::int64_t taken = 0;
        for (; !m_rest.empty() && isAsciiDigit(m_rest.front()); ++taken) {
            if (taken < kFinestDigits)
                ticks = ticks * 10 + (m_rest.front() - '0');
            m_rest.remove_prefix(1);
        }
        if (taken == 0 || taken > 9)
            return giveUp();
        for (std::int64_t i = taken; i < kFinestDigits; ++i)
            ticks *= 10;
        return ticks;
    }
    [[nodiscard]] char next() const { return m_rest.empty() ? '\0' : m_rest.front(); }
    [[nodiscard]] bool isAtEnd() const { return m_isGood && m_rest.empty(); }

  private:
    int giveUp() {
        m_isGood = false;
        m_rest = {};
        return 0;
    }

    std::string_view m_rest;
    bool m_isGood = true;
};

/// hh:mm:ss, as most times are written; the text has colons there.
std::optional<std::int64_t> parseUsualTime(std::string_view text) {
    const int hours = twoDigits(text, 0);
    const int minutes = twoDigits(text, 3);
    const int seconds = twoDigits(text, 6);
    if (hours < 0 || minutes < 0 || seconds < 0 || hours > 23 || minutes > 59 || seconds > 59)
        return std::nullopt;
    return ((hours * 60 + minutes) * 60 + seconds) * kTicksPerSecond;
}

/// The ticks of a time of day, perhaps with an offset.
std::optional<std::int64_t> parseTime(std::string_view text) {
    if (text.size() == 8 && text[2] == ':' && text[5] == ':')
        return parseUsualTime(text);
    Steps steps(text);
    std::int64_t seconds = std::int64_t{3600} * steps.digits(2, 0, 23);
    steps.need(':');
    seconds += std::int64_t{60} * steps.digits(2, 0, 59);
    std::int64_t ticks = 0;
    if (steps.skip(":")) {
        seconds += steps.digits(2, 0, 59);
        if (steps.skip(".,"))
            ticks = steps.fraction();
    }
    const char sign = steps.next();
    if (!steps.skip("Z") && steps.skip("+-")) {
        std::int64_t offset = std::int64_t{60} * steps.digits(2, 0, 23);
        if (steps.next() != '\0') {
            steps.skip(":");
            offset += steps.digits(2, 0, 59);
        }
        seconds -= std::int64_t{60} * (sign == '+' ? offset : -offset);
    }
    return steps.isAtEnd() ? std::optional(seconds * kTicksPerSecond + ticks) : std::nullopt;
}

} // namespace

std::optional<std::int64_t> parseDate(std::string_view text) {
    constexpr std::size_t kDay = 10; // 2026-11-21
    if (text.size() < kDay || text[4] != '-' || text[7] != '-')
        return std::nullopt;
    const auto day = ticksOfDay(twoDigits(text, 0) * 100 + twoDigits(text, 2), twoDigits(text, 5), twoDigits(text, 8));
    if (!day || text.size() == kDay)
        return day;
    if (text[kDay] != 'T' && text[kDay] != ' ')
        return std::nullopt;
    const auto time = parseTime(text.substr(kDay + 1));
    return time ? std::optional(*day + *time) : std::nullopt;
}

std::string formatDate(std::int64_t ticks) {
    const CalendarDay day = calendarDay(ticks);
    std::string text = fmt::format("{:04}-{:02}-{:02}", day.year, day.month, day.day);
    const std::int64_t inDay = ticks - dayOf(ticks) * kTicksPerDay;
    if (inDay == 0)
        return text;
    const std::int64_t seconds = inDay / kTicksPerSecond;
    text += fmt::format(" {:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
    if (const std::int64_t rest = inDay % kTicksPerSecond; rest != 0) {
        text += fmt::format(".{:07}", rest);
        text.erase(text.find_last_not_of('0') + 1);
    }
    return text;
}

std::int64_t dayOf(std::int64_t ticks) {
    const std::int64_t day = ticks / kTicksPerDay;
    return ticks % kTicksPerDay < 0 ? day - 1 : day;
}

CalendarDay calendarDay(std::int64_t ticks) {
    const sys_days day{std::chrono::days{static_cast<int>(dayOf(ticks))}};
    const std::chrono::year_month_day date{day};
    return {static_cast<int>(date.year()), static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(std::chrono::weekday{day}.iso_encoding())};
}

bool isSupportedDate(std::int64_t ticks) {
    return ticks >= kFirst && ticks < kBehind;
}

} // namespace tavix
