#include "base/Histogram.h"

#include "base/DateTicks.h"
#include "base/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <limits>

namespace tavix {

namespace {

/// There are at most so many ranges, and at least a third of it when the values allow.
constexpr std::int64_t kWantedBins = 60;
/// A range is at least this part of the largest value: narrower ones would share borders.
constexpr long double kFinestPart = 1e-15L;
constexpr int kMostExponent = 330;
constexpr long double kExactIntegers = 9.2e18L; ///< below it a long double holds all integers
constexpr std::int64_t kMostStep = 1'000'000'000'000;
constexpr std::size_t kMostSlots = 4096;
constexpr std::size_t kMostFine = 4096;
constexpr std::int64_t kSecondsPerDay = 86'400;
constexpr std::int64_t kMondayBefore1970 = -3; ///< days since 1970-01-01
constexpr std::int64_t kMonthsPerYear = 12;

std::int64_t floorDivide(std::int64_t value, std::int64_t by) {
    return value / by - (value % by < 0 ? 1 : 0);
}

struct NiceStep {
    std::int64_t factor = 1; ///< 1, 2 or 5
    int exponent = 0;
};

/// The least 1, 2 or 5 times a power of ten that is not below the number, which is above 0.
NiceStep niceStep(long double least) {
    for (int exponent = static_cast<int>(std::floor(std::log10(least))) - 1;; ++exponent)
        for (const std::int64_t factor : {1, 2, 5})
            if (static_cast<long double>(factor) * std::pow(10.0L, exponent) >= least * (1 - 1e-12L))
                return {factor, exponent};
}

std::int64_t monthOf(std::int64_t ticks) {
    const CalendarDay day = calendarDay(ticks);
    return day.year * kMonthsPerYear + day.month - 1;
}

std::int64_t startOfMonth(std::int64_t month) {
    using namespace std::chrono;
    const std::int64_t year = floorDivide(month, kMonthsPerYear);
    const sys_days day{std::chrono::year(static_cast<int>(year)) /
                       static_cast<unsigned>(month - year * kMonthsPerYear + 1) / 1};
    return day.time_since_epoch().count() * kTicksPerDay;
}

struct DateStep {
    BinUnit unit;
    std::int64_t step;
};

/// In seconds.
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kHour = 60 * kMinute;
/// From the finest on. In the span for which one is chosen, DateBins counts by units that make it up.
constexpr std::array kDateSteps{
    DateStep{BinUnit::Second, 1},
    DateStep{BinUnit::Second, 5},
    DateStep{BinUnit::Second, 15},
    DateStep{BinUnit::Second, 30},
    DateStep{BinUnit::Second, kMinute},
    DateStep{BinUnit::Second, 5 * kMinute},
    DateStep{BinUnit::Second, 15 * kMinute},
    DateStep{BinUnit::Second, 30 * kMinute},
    DateStep{BinUnit::Second, kHour},
    DateStep{BinUnit::Second, 3 * kHour},
    DateStep{BinUnit::Second, 6 * kHour},
    DateStep{BinUnit::Second, 12 * kHour},
    DateStep{BinUnit::Second, kSecondsPerDay},
    DateStep{BinUnit::Week, 1},
    DateStep{BinUnit::Month, 1},
    DateStep{BinUnit::Month, 3},
    DateStep{BinUnit::Month, 12},
    DateStep{BinUnit::Month, 60},
    DateStep{BinUnit::Month, 120},
    DateStep{BinUnit::Month, 600},
    DateStep{BinUnit::Month, 1200},
    DateStep{BinUnit::Month, 6000},
};

std::int64_t binOfDate(std::int64_t ticks, const DateStep& step) {
    switch (step.unit) {
    case BinUnit::Week:
        return floorDivide(dayOf(ticks) - kMondayBefore1970, 7 * step.step);
    case BinUnit::Month:
        return floorDivide(monthOf(ticks), step.step);
    default:
        return floorDivide(ticks, step.step * kTicksPerSecond);
    }
}

bool isDateUnit(BinUnit unit) {
    return unit == BinUnit::Second || unit == BinUnit::Week || unit == BinUnit::Month;
}

/// For any value: std::abs of the least integer overflows.
bool isWithin(std::int64_t value, std::int64_t most) {
    return value >= -most && value <= most;
}

} // namespace

bool Histogram::isSound() const {
    if (counts.empty() || counts.size() > kMostBins || step < 1 || step > kMostStep)
        return false;
    if (kind != HistogramKind::Dates)
        return unit == BinUnit::Number && isWithin(exponent, kMostExponent) &&
               first > std::numeric_limits<std::int64_t>::min() / 4 &&
               first < std::numeric_limits<std::int64_t>::max() / 4;
    if (!isDateUnit(unit) || exponent != 0 || !isWithin(first, kMostStep))
        return false;
    // From the year 1 to the year 10000, with the ranges that these years begin and end.
    const long double unitSeconds = unit == BinUnit::Second ? 1.0L : unit == BinUnit::Week ? 7.0L * 86'400 : 2.6e6L;
    const long double origin = unit == BinUnit::Month ? 6.2e10L : 0.0L;
    const auto seconds = [&](std::size_t index) {
        return static_cast<long double>(first + static_cast<std::int64_t>(index)) * static_cast<long double>(step) *
                   unitSeconds -
               origin;
    };
    return seconds(0) > -9e10L && seconds(counts.size()) < 3.5e11L;
}

long double Histogram::border(std::size_t index) const {
    const long double factor =
        static_cast<long double>(first + static_cast<std::int64_t>(index)) * static_cast<long double>(step);
    if (exponent == 0)
        return factor;
    const long double number = factor * std::pow(10.0L, exponent);
    if (exponent > 0 && std::fabs(number) < kExactIntegers)
        return number;
    // As the nearest double, which a value written with these digits also is.
    return parseNumber(fmt::format("{:.0f}e{}", factor, exponent)).value_or(number);
}

std::int64_t Histogram::dateBorder(std::size_t index) const {
    const std::int64_t at = (first + static_cast<std::int64_t>(index)) * step;
    switch (unit) {
    case BinUnit::Week:
        return (at * 7 + kMondayBefore1970) * kTicksPerDay;
    case BinUnit::Month:
        return startOfMonth(at);
    default:
        return at * kTicksPerSecond;
    }
}

NumberBins::NumberBins(long double lowest, long double highest, bool areWhole) {
    const long double largest = std::max(std::fabs(lowest), std::fabs(highest));
    const long double least =
        std::max((highest - lowest) / static_cast<long double>(kWantedBins), largest * kFinestPart);
    NiceStep step;
    if (areWhole ? least > 1 : highest > lowest)
        step = niceStep(least);
    else if (!areWhole && largest > 0)
        step = niceStep(largest / 100);
    m_histogram.kind = HistogramKind::Numbers;
    m_histogram.step = step.factor;
    m_histogram.exponent = step.exponent;
    const long double width = static_cast<long double>(step.factor) * std::pow(10.0L, step.exponent);
    // The division rounds; the borders decide.
    m_histogram.first = static_cast<std::int64_t>(std::floor(lowest / width));
    while (m_histogram.border(0) > lowest)
        --m_histogram.first;
    while (m_histogram.border(1) <= lowest)
        ++m_histogram.first;
    std::size_t bins = 1;
    while (bins < Histogram::kMostBins && m_histogram.border(bins) <= highest)
        ++bins;
    m_histogram.counts.assign(bins, 0);
    m_border = m_histogram.border(1);
}

void NumberBins::goOn() {
    ++m_bin;
    m_border = m_histogram.border(m_bin + 1);
}

std::int64_t DateBins::indexOf(std::int64_t ticks, Level level) {
    switch (level) {
    case Level::Second:
        return floorDivide(ticks, kTicksPerSecond);
    case Level::Minute:
        return floorDivide(ticks, kMinute * kTicksPerSecond);
    case Level::Hour:
        return floorDivide(ticks, kHour * kTicksPerSecond);
    case Level::Day:
        return dayOf(ticks);
    case Level::Month:
        return monthOf(ticks);
    case Level::Year:
        break;
    }
    return floorDivide(monthOf(ticks), kMonthsPerYear);
}

std::int64_t DateBins::startOf(std::int64_t index, Level level) {
    switch (level) {
    case Level::Second:
        return index * kTicksPerSecond;
    case Level::Minute:
        return index * kMinute * kTicksPerSecond;
    case Level::Hour:
        return index * kHour * kTicksPerSecond;
    case Level::Day:
        return index * kTicksPerDay;
    case Level::Month:
        return startOfMonth(index);
    case Level::Year:
        break;
    }
    return startOfMonth(index * kMonthsPerYear);
}

void DateBins::begin(std::int64_t ticks) {
    if (m_fine.empty())
        m_first = ticks;
    else if (m_fine.size() >= kMostFine && m_level != Level::Year)
        coarsen();
    const std::int64_t index = indexOf(ticks, m_level);
    m_end = startOf(index + 1, m_level);
    if (m_fine.empty() || m_fine.back().index != index)
        m_fine.push_back({index, 0});
}

void DateBins::coarsen() {
    const Level finer = m_level;
    m_level = static_cast<Level>(static_cast<int>(m_level) + 1);
    std::vector<Fine> coarse;
    for (const Fine& fine : m_fine) {
        const std::int64_t index = indexOf(startOf(fine.index, finer), m_level);
        if (coarse.empty() || coarse.back().index != index)
            coarse.push_back({index, 0});
        coarse.back().count += fine.count;
    }
    m_fine.swap(coarse);
}

Histogram DateBins::take() const {
    const auto chosen = std::find_if(kDateSteps.begin(), kDateSteps.end() - 1, [&](const DateStep& step) {
        const bool isFine = step.unit == BinUnit::Second && step.step < kSecondsPerDay;
        return (m_hasTimes || !isFine) && binOfDate(m_last, step) - binOfDate(m_first, step) < kWantedBins;
    });
    Histogram histogram{HistogramKind::Dates, chosen->unit, binOfDate(m_first, *chosen), chosen->step, 0, {}};
    histogram.counts.assign(static_cast<std::size_t>(binOfDate(m_last, *chosen) - histogram.first) + 1, 0);
    for (const Fine& fine : m_fine) {
        // The small unit of the first date may begin before it.
        const std::int64_t ticks = std::max(startOf(fine.index, m_level), m_first);
        histogram.counts[static_cast<std::size_t>(binOfDate(ticks, *chosen) - histogram.first)] += fine.count;
    }
    return histogram;
}

void LengthBins::makeRoomFor(std::uint64_t length) {
    while (length >> m_shift >= kMostSlots) {
        const std::size_t half = (m_slots.size() + 1) / 2;
        for (std::size_t i = 0; i < half; ++i)
            m_slots[i] = m_slots[2 * i] + (2 * i + 1 < m_slots.size() ? m_slots[2 * i + 1] : 0);
        m_slots.resize(half);
        ++m_shift;
    }
    if (length >> m_shift >= m_slots.size())
        m_slots.resize(static_cast<std::size_t>(length >> m_shift) + 1);
}

Histogram LengthBins::make(std::uint64_t shortest, std::uint64_t longest) const {
    const std::uint64_t slot = std::uint64_t{1} << m_shift;
    const std::uint64_t slots = (longest >> m_shift) - (shortest >> m_shift) + 1;
    const long double least = static_cast<long double>(slots) / static_cast<long double>(kWantedBins);
    std::uint64_t slotsPerBin = 1;
    if (least > 1) {
        const NiceStep step = niceStep(least);
        slotsPerBin = static_cast<std::uint64_t>(step.factor);
        for (int i = 0; i < step.exponent; ++i)
            slotsPerBin *= 10;
    }
    Histogram histogram{
        HistogramKind::Lengths, BinUnit::Number, 0, static_cast<std::int64_t>(slot * slotsPerBin), 0, {}};
    const std::uint64_t first = (shortest >> m_shift) / slotsPerBin;
    const std::uint64_t last = (longest >> m_shift) / slotsPerBin;
    histogram.first = static_cast<std::int64_t>(first);
    histogram.counts.assign(static_cast<std::size_t>(last - first) + 1, 0);
    for (std::size_t i = 0; i < m_slots.size(); ++i)
        if (m_slots[i] > 0 && i / slotsPerBin >= first && i / slotsPerBin <= last)
            histogram.counts[static_cast<std::size_t>(i / slotsPerBin - first)] += m_slots[i];
    return histogram;
}

} // namespace tavix
