#include "findings/OrderedValues.h"

namespace tavix::findings {

namespace {

/// As many as a sentence can name.
constexpr std::size_t kNamed = 3;
constexpr std::size_t kLongestText = 80;
/// 1900-01-01.
constexpr std::int64_t kEarliestUsual = -25'567 * kTicksPerDay;

} // namespace

OrderedDates::OrderedDates(std::int64_t now)
    : m_now(now),
      m_futureTexts(kMostListed, kLongestText),
      m_oldTexts(kMostListed, kLongestText),
      m_newYearTexts(kMostListed, kLongestText) {}

void OrderedDates::take(std::int64_t ticks, std::uint64_t count, std::string_view text) {
    if (m_all.values == 0)
        m_first = ticks;
    m_last = ticks;
    m_all.add(count);
    if (ticks >= m_dayEnd || m_days == 0)
        takeDay(dayOf(ticks), ticks);
    constexpr std::int64_t kTicksPerMinute = 60 * kTicksPerSecond;
    m_minutesOfDay.set(static_cast<std::size_t>((ticks - (m_dayEnd - kTicksPerDay)) / kTicksPerMinute));
    if (ticks == m_dayEnd - kTicksPerDay)
        m_midnight.add(count);
    if (m_isNewYear) {
        m_newYear.add(count);
        m_newYearTexts.add(text, count);
    }
    if (ticks < kEarliestUsual) {
        m_old.add(count);
        m_oldTexts.add(text, count);
    }
    if (ticks > m_now) {
        m_future.add(count);
        m_futureTexts.add(text, count);
    } else {
        m_lastPast = ticks;
    }
}

void OrderedDates::takeDay(std::int64_t day, std::int64_t ticks) {
    const CalendarDay calendar = calendarDay(ticks);
    const int month = calendar.year * 12 + calendar.month - 1;
    if (m_days > 0) {
        for (std::int64_t missing = m_day + 1; missing < day && m_missingDays.size() < kNamed; ++missing)
            m_missingDays.push_back(missing);
        for (auto missing = m_month + 1; missing < month && m_missingMonths.size() < kNamed; ++missing)
            m_missingMonths.push_back(static_cast<int>(missing));
        if (month > m_month + 1)
            m_missingMonthCount += static_cast<std::uint64_t>(month - m_month - 1);
    }
    if (m_days == 0 || month != m_month)
        ++m_months;
    ++m_days;
    m_day = day;
    m_month = month;
    m_dayEnd = (day + 1) * kTicksPerDay;
    // The last days of a month do not exist in all of them, which does not matter for a rough count.
    m_daysOfYear.set(static_cast<std::size_t>((calendar.month - 1) * 30 + calendar.day) % m_daysOfYear.size());
    m_isNewYear = calendar.month == 1 && calendar.day == 1;
}

} // namespace tavix::findings
