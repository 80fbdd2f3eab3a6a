#include "forms/WrittenDate.h"

#include "base/Ascii.h"
#include "base/DateTicks.h"
#include "base/DayTicks.h"

#include <array>
#include <cstddef>
#include <utility>

namespace tavix::forms {

namespace {

constexpr std::array<std::string_view, 12> kMonths{"january",   "february", "march",    "april",
                                                   "may",       "june",     "july",     "august",
                                                   "september", "october",  "november", "december"};
constexpr std::array<std::string_view, 7> kWeekdays{"monday", "tuesday",  "wednesday", "thursday",
                                                    "friday", "saturday", "sunday"};
constexpr std::size_t kAbbreviation = 3;
constexpr std::size_t kMostDigits = 4;
/// A day of a short year must exist in one century.
constexpr int kSomeCentury = 2000;
constexpr std::int64_t kTickDigits = 7;
constexpr std::int64_t kMostPlaces = 9;

/// Reads the commonest layouts: 2001/01/14, 14.01.2001 or 01/14/2001, perhaps with " 21:55" or " 21:55:03". False for
/// any other, and for texts that are not dates. Writes each member once, which is faster than to copy a date.
bool readUsual(std::string_view text, WrittenDate& date) {
    constexpr std::size_t kDay = 10;    // 2001/01/14
    constexpr std::size_t kMinute = 16; // 2001/01/14 21:55
    constexpr std::size_t kSecond = 19; // 2001/01/14 21:55:03
    if (text.size() != kDay && text.size() != kMinute && text.size() != kSecond)
        return false;
    const bool isYearFirst = isAsciiDigit(text[2]);
    const std::size_t middle = isYearFirst ? 5 : 3;
    const std::size_t year = isYearFirst ? 0 : 6;
    const char separator = text[middle - 1];
    const int fullYear = twoDigits(text, year) * 100 + twoDigits(text, year + 2);
    const int inMiddle = twoDigits(text, middle);
    const int other = twoDigits(text, isYearFirst ? 8 : 0);
    if (fullYear < 0 || text[isYearFirst ? 7 : 5] != separator ||
        (separator != '/' && separator != '.' && separator != '-'))
        return false;
    std::int64_t time = 0;
    if (text.size() > kDay) {
        const bool hasSeconds = text.size() == kSecond;
        const int hours = twoDigits(text, kDay + 1);
        const int minutes = twoDigits(text, kDay + 4);
        const int seconds = hasSeconds ? twoDigits(text, kMinute + 1) : 0;
        if (text[kDay] != ' ' || text[kDay + 3] != ':' || (hasSeconds && text[kMinute] != ':') || hours < 0 ||
            minutes < 0 || seconds < 0 || hours > 23 || minutes > 59 || seconds > 59)
            return false;
        time = kTicksPerSecond * ((hours * 60 + minutes) * 60 + seconds);
    }
    const auto dayFirst = ticksOfDay(fullYear, inMiddle, other);
    const auto monthFirst = isYearFirst ? dayFirst : ticksOfDay(fullYear, other, inMiddle);
    if (!dayFirst && !monthFirst)
        return false;
    date.shape = isYearFirst ? DateShape::YearFirst : DateShape::DayAndMonth;
    date.separator = separator;
    date.hasTime = text.size() > kDay;
    if (dayFirst)
        date.dayFirst = *dayFirst + time;
    if (monthFirst)
        date.monthFirst = *monthFirst + time;
    return true;
}

struct Digits {
    int value = 0;
    std::size_t count = 0;
};

/// Takes parts of a date from the left of a text.
class Parts {
  public:
    explicit Parts(std::string_view text) : m_rest(text) {}

    /// Up to four digits; a fifth makes the date fail later.
    Digits digits() {
        Digits digits;
        for (; digits.count < kMostDigits && isAsciiDigit(next()); ++digits.count) {
            digits.value = digits.value * 10 + (next() - '0');
            m_rest.remove_prefix(1);
        }
        return digits;
    }
    /// ASCII letters.
    std::string_view word() {
        std::size_t size = 0;
        while (size < m_rest.size() && isAsciiLetter(m_rest[size]))
            ++size;
        const std::string_view word = m_rest.substr(0, size);
        m_rest.remove_prefix(size);
        return word;
    }
    bool skip(char c) {
        if (next() != c)
            return false;
        m_rest.remove_prefix(1);
        return true;
    }
    /// One or more.
    bool skipBlanks() {
        const std::size_t before = m_rest.size();
        while (skip(' '))
            continue;
        return m_rest.size() < before;
    }
    /// The separator of two numbers: / . or -; 0 without one.
    char separator() {
        const char c = next();
        return (c == '/' || c == '.' || c == '-') && skip(c) ? c : '\0';
    }
    /// The separator of a number and the name of a month: blanks, / or -; 0 without one.
    char nameSeparator() {
        const char c = next();
        if (c == ' ')
            return skipBlanks() ? ' ' : '\0';
        return (c == '/' || c == '-') && skip(c) ? c : '\0';
    }
    [[nodiscard]] char next() const { return m_rest.empty() ? '\0' : m_rest.front(); }
    [[nodiscard]] bool isAtEnd() const { return m_rest.empty(); }

  private:
    std::string_view m_rest;
};

/// The number of a name from 1, in full or as its first three letters; 0 for any other word.
template <std::size_t size>
int numberOfName(const std::array<std::string_view, size>& names, std::string_view word) {
    if (word.size() < kAbbreviation)
        return 0;
    for (std::size_t i = 0; i < size; ++i) {
        const bool isFull = word.size() == names[i].size();
        if ((isFull || word.size() == kAbbreviation) && equalsIgnoringAsciiCase(word, names[i].substr(0, word.size())))
            return static_cast<int>(i) + 1;
    }
    return 0;
}

int monthOfName(std::string_view word) {
    return equalsIgnoringAsciiCase(word, "sept") ? 9 : numberOfName(kMonths, word);
}

/// Digits after the decimal point of the seconds; digits beyond 100 ns are dropped. None if there are none or too many.
std::optional<std::int64_t> takeFraction(Parts& parts) {
    std::int64_t ticks = 0;
    std::int64_t places = 0;
    for (; isAsciiDigit(parts.next()); ++places) {
        const char digit = parts.next();
        if (places < kTickDigits)
            ticks = ticks * 10 + (digit - '0');
        if (places == kMostPlaces || !parts.skip(digit))
            return std::nullopt;
    }
    if (places == 0)
        return std::nullopt;
    for (std::int64_t i = places; i < kTickDigits; ++i)
        ticks *= 10;
    return ticks;
}

/// The hour of a day from one with AM or PM.
std::optional<int> hourOfHalf(int hour, std::string_view half) {
    if (hour < 1 || hour > 12)
        return std::nullopt;
    if (equalsIgnoringAsciiCase(half, "am"))
        return hour % 12;
    return equalsIgnoringAsciiCase(half, "pm") ? std::optional(hour % 12 + 12) : std::nullopt;
}

/// +hh, +hhmm or +hh:mm (or -), in minutes.
std::optional<int> takeOffset(Parts& parts) {
    const bool isNegative = parts.next() == '-';
    if (!parts.skip('+') && !parts.skip('-'))
        return std::nullopt;
    Digits digits = parts.digits();
    int minutes = 0;
    if (digits.count == 4) {
        minutes = digits.value % 100;
        digits.value /= 100;
    } else if (digits.count != 2) {
        return std::nullopt;
    } else if (parts.skip(':')) {
        const Digits more = parts.digits();
        if (more.count != 2)
            return std::nullopt;
        minutes = more.value;
    }
    if (digits.value > 23 || minutes > 59)
        return std::nullopt;
    return (digits.value * 60 + minutes) * (isNegative ? -1 : 1);
}

/// AM, PM, the zone of universal time, or an offset. None if there is anything else.
std::optional<int> takeEndOfTime(Parts& parts, int& hour) {
    bool hasHalf = false;
    while (!parts.isAtEnd()) {
        parts.skipBlanks();
        if (!isAsciiLetter(parts.next()))
            return takeOffset(parts);
        const std::string_view word = parts.word();
        if (equalsIgnoringAsciiCase(word, "z") || equalsIgnoringAsciiCase(word, "utc") ||
            equalsIgnoringAsciiCase(word, "gmt"))
            return 0;
        const auto hourOfDay = hasHalf ? std::nullopt : hourOfHalf(hour, word);
        if (!hourOfDay)
            return std::nullopt;
        hour = *hourOfDay;
        hasHalf = true;
    }
    return 0;
}

/// The complete rest: hh:mm and what may follow. Ticks to add to the day.
std::optional<std::int64_t> takeTime(Parts& parts) {
    const Digits hours = parts.digits();
    if (hours.count < 1 || hours.count > 2 || !parts.skip(':'))
        return std::nullopt;
    const Digits minutes = parts.digits();
    if (minutes.count != 2 || minutes.value > 59)
        return std::nullopt;
    int seconds = 0;
    std::int64_t ticks = 0;
    if (parts.skip(':')) {
        const Digits digits = parts.digits();
        if (digits.count != 2 || digits.value > 59)
            return std::nullopt;
        seconds = digits.value;
        if (parts.skip('.') || parts.skip(',')) {
            const auto fraction = takeFraction(parts);
            if (!fraction)
                return std::nullopt;
            ticks = *fraction;
        }
    }
    int hour = hours.value;
    const auto offset = takeEndOfTime(parts, hour);
    if (!offset || hour > 23 || !parts.isAtEnd())
        return std::nullopt;
    return ticks + kTicksPerSecond * (std::int64_t{60} * (hour * 60 + minutes.value - *offset) + seconds);
}

/// A year of four digits, or of two, which makes the date one of a short year.
bool isYear(Digits digits) {
    return digits.count == 4 || digits.count == 2;
}

void setDays(WrittenDate& date, Digits year, int dayFirstMonth, int dayFirstDay, bool hasOrder) {
    const int fullYear = year.count == 2 ? kSomeCentury + year.value : year.value;
    const auto day = [&](int month, int dayOfMonth) { return ticksOfDay(fullYear, month, dayOfMonth); };
    date.dayFirst = day(dayFirstMonth, dayFirstDay);
    date.monthFirst = hasOrder ? day(dayFirstDay, dayFirstMonth) : date.dayFirst;
}

bool isSound(WrittenDate& date, Digits year) {
    if (!date.dayFirst && !date.monthFirst)
        return false;
    if (year.count == 2) {
        date.shape = DateShape::ShortYear;
        date.dayFirst.reset();
        date.monthFirst.reset();
    }
    return true;
}

/// 2001/1/14, 14.1.2001, 14-Jan-2001, 14Jan2001.
bool takeFromDigits(Parts& parts, WrittenDate& date) {
    const Digits first = parts.digits();
    const bool mayBeName = first.count <= 2;
    date.separator = parts.separator();
    if (date.separator == '\0' || (mayBeName && isAsciiLetter(parts.next()))) {
        if (!mayBeName)
            return false;
        if (date.separator == '\0')
            date.separator = parts.nameSeparator();
        const int month = monthOfName(parts.word());
        if (month == 0 || date.separator == '.' || parts.nameSeparator() != date.separator)
            return false;
        const Digits year = parts.digits();
        date.shape = DateShape::DayBeforeName;
        setDays(date, year, month, first.value, false);
        return isYear(year) && isSound(date, year);
    }
    const Digits second = parts.digits();
    if (second.count < 1 || second.count > 2 || !parts.skip(date.separator))
        return false;
    const Digits third = parts.digits();
    if (first.count == 4) {
        date.shape = DateShape::YearFirst;
        setDays(date, first, second.value, third.value, false);
        return third.count >= 1 && third.count <= 2 && isSound(date, first);
    }
    date.shape = DateShape::DayAndMonth;
    setDays(date, third, second.value, first.value, true);
    if (first.count > 2 || !isYear(third))
        return false;
    if (third.count == 2 && !date.dayFirst && !date.monthFirst && first.count == 2)
        setDays(date, first, second.value, third.value, false); // 99-12-31
    return isSound(date, third);
}

/// Jan 14, 2001 or Sun, 14 Jan 2001.
bool takeFromName(Parts& parts, WrittenDate& date) {
    std::string_view word = parts.word();
    if (numberOfName(kWeekdays, word) != 0) {
        const bool hasComma = parts.skip(',');
        if (!parts.skipBlanks() && !hasComma)
            return false;
        if (isAsciiDigit(parts.next())) {
            const bool isGood = takeFromDigits(parts, date);
            return isGood && date.shape == DateShape::DayBeforeName;
        }
        word = parts.word();
    }
    const int month = monthOfName(word);
    if (month == 0)
        return false;
    if (word.size() <= 4)
        parts.skip('.');
    date.separator = parts.nameSeparator();
    const Digits day = parts.digits();
    if (date.separator == '\0' || day.count < 1 || day.count > 2)
        return false;
    const bool hasComma = date.separator == ' ' && parts.skip(',');
    if (hasComma)
        parts.skipBlanks();
    else if (parts.nameSeparator() != date.separator)
        return false;
    const Digits year = parts.digits();
    date.shape = DateShape::MonthNameFirst;
    setDays(date, year, month, day.value, false);
    return isYear(year) && isSound(date, year);
}

bool readIso(std::string_view text, WrittenDate& date) {
    constexpr std::size_t kDay = std::string_view("2001-01-14").size();
    const auto ticks = text.size() >= kDay && text[4] == '-' ? parseDate(text) : std::nullopt;
    if (!ticks)
        return false;
    date.dayFirst = ticks;
    date.monthFirst = ticks;
    date.hasTime = text.size() > kDay;
    return true;
}

bool readAny(std::string_view text, WrittenDate& date) {
    Parts parts(text);
    if (!(isAsciiDigit(parts.next()) ? takeFromDigits(parts, date) : takeFromName(parts, date)))
        return false;
    if (parts.isAtEnd())
        return true;
    const bool hasComma = parts.skip(',');
    if (!parts.skipBlanks() && !hasComma && !parts.skip('T'))
        return false;
    const auto time = takeTime(parts);
    if (!time)
        return false;
    date.hasTime = true;
    for (auto* ticks : {&date.dayFirst, &date.monthFirst})
        if (*ticks)
            **ticks += *time;
    return true;
}

} // namespace

std::optional<WrittenDate> readDate(std::string_view text) {
    std::optional<WrittenDate> date(std::in_place);
    if (!readIso(text, *date) && !readUsual(text, *date) && !readAny(text, *date))
        date.reset();
    return date;
}

} // namespace tavix::forms
