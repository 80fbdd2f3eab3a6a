#pragma once

#include "base/DateTicks.h"
#include "findings/Finding.h"
#include "findings/ValueLists.h"

#include <bitset>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace tavix::findings {

/// Examines numbers, which come in ascending order.
class OrderedNumbers {
  public:
    void takeInteger(std::int64_t value, std::uint64_t count) {
        takeReal(static_cast<double>(value), count);
        if (m_last && m_missing < kMostMissing)
            takeGap(value);
        m_last = value;
        if (value != 0 && value % 10 == 0)
            m_tens.add(count);
    }
    void takeReal(double value, std::uint64_t count) {
        if (value < 0)
            m_negative.add(count);
        else if (value == 0)
            m_zero.add(count);
        else if (!m_leastPositive)
            m_leastPositive = value;
        m_all.add(count);
    }

    [[nodiscard]] const Hits& all() const { return m_all; }
    [[nodiscard]] const Hits& negative() const { return m_negative; }
    [[nodiscard]] const Hits& zero() const { return m_zero; }
    [[nodiscard]] const Hits& tens() const { return m_tens; } ///< multiples of ten but zero; of integers
    [[nodiscard]] std::optional<double> leastPositive() const { return m_leastPositive; }
    /// The integers between the least and the greatest that do not occur; no more are counted once they are many.
    [[nodiscard]] std::uint64_t missing() const { return m_missing; }
    [[nodiscard]] std::int64_t firstMissing() const { return m_firstMissing; }

  private:
    static constexpr std::uint64_t kMostMissing = 1'000'000'000;
    void takeGap(std::int64_t value) {
        if (value == *m_last)
            return; // written differently
        const std::uint64_t gap = static_cast<std::uint64_t>(value) - static_cast<std::uint64_t>(*m_last) - 1;
        if (gap == 0)
            return;
        if (m_missing == 0)
            m_firstMissing = *m_last + 1;
        m_missing = gap > kMostMissing ? kMostMissing : m_missing + gap;
    }

    Hits m_all;
    Hits m_negative;
    Hits m_zero;
    Hits m_tens;
    std::optional<double> m_leastPositive;
    std::optional<std::int64_t> m_last;
    std::uint64_t m_missing = 0;
    std::int64_t m_firstMissing = 0;
};

/// Examines dates, which come in ascending order.
class OrderedDates {
  public:
    /// `now`: the moment of the run, in units of base/DateTicks.h.
    explicit OrderedDates(std::int64_t now);

    void take(std::int64_t ticks, std::uint64_t count, std::string_view text);

    [[nodiscard]] const Hits& all() const { return m_all; }
    [[nodiscard]] std::int64_t first() const { return m_first; }
    [[nodiscard]] std::int64_t last() const { return m_last; }
    [[nodiscard]] const Hits& future() const { return m_future; }
    [[nodiscard]] const Hits& old() const { return m_old; }         ///< before 1900
    [[nodiscard]] const Hits& newYear() const { return m_newYear; } ///< first of January
    [[nodiscard]] const Hits& midnight() const { return m_midnight; }
    [[nodiscard]] std::uint64_t days() const { return m_days; } ///< different ones
    [[nodiscard]] std::uint64_t months() const { return m_months; }
    [[nodiscard]] std::size_t minutesOfDay() const { return m_minutesOfDay.count(); }
    [[nodiscard]] std::size_t daysOfYear() const { return m_daysOfYear.count(); }
    /// The latest one that is not after the moment of the run.
    [[nodiscard]] std::int64_t lastPast() const { return m_lastPast; }

    /// The first few days and months without a date, between the first and the last one.
    [[nodiscard]] const std::vector<std::int64_t>& missingDays() const { return m_missingDays; }
    [[nodiscard]] const std::vector<int>& missingMonths() const { return m_missingMonths; } ///< year * 12 + month - 1
    [[nodiscard]] std::uint64_t missingMonthCount() const { return m_missingMonthCount; }

    /// The values of these, for forms of dates that a condition cannot read; empty when they are many.
    [[nodiscard]] const TextList& futureTexts() const { return m_futureTexts; }
    [[nodiscard]] const TextList& oldTexts() const { return m_oldTexts; }
    [[nodiscard]] const TextList& newYearTexts() const { return m_newYearTexts; }

  private:
    void takeDay(std::int64_t day, std::int64_t ticks);

    std::int64_t m_now;
    Hits m_all;
    Hits m_future;
    Hits m_old;
    Hits m_newYear;
    Hits m_midnight;
    std::int64_t m_first = 0;
    std::int64_t m_last = 0;
    std::int64_t m_lastPast = INT64_MIN;
    std::int64_t m_day = INT64_MIN; ///< since 1970, of the value before
    std::int64_t m_dayEnd = INT64_MIN;
    std::int64_t m_month = INT64_MIN;
    bool m_isNewYear = false;
    std::uint64_t m_days = 0;
    std::uint64_t m_months = 0;
    std::uint64_t m_missingMonthCount = 0;
    std::bitset<1440> m_minutesOfDay;
    std::bitset<367> m_daysOfYear;
    std::vector<std::int64_t> m_missingDays;
    std::vector<int> m_missingMonths;
    TextList m_futureTexts;
    TextList m_oldTexts;
    TextList m_newYearTexts;
};

/// Either of them, for a field that is read as numbers or dates.
struct OrderedFigures {
    std::int64_t now = 0; ///< the moment of the run
    std::optional<OrderedNumbers> numbers{};
    std::optional<OrderedDates> dates{};
};

} // namespace tavix::findings
