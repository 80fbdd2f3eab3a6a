#include "chart/Scale.h"

#include "base/DateTicks.h"
#include "base/NumberText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace tavix::chart {

namespace {

constexpr double kWholeNumbers = 1e15; ///< below it, doubles hold whole numbers without gaps
constexpr std::size_t kMostTicks = 50;
constexpr double kSecondsPerDay = 86'400;
constexpr std::array<std::string_view, 12> kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                                      "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

struct DateStep {
    BinUnit unit;
    std::int64_t step;
    double seconds; ///< about its length
};

constexpr double kMonth = 30.44 * kSecondsPerDay;
constexpr std::array kDateSteps{
    DateStep{BinUnit::Second, 1, 1},
    DateStep{BinUnit::Second, 5, 5},
    DateStep{BinUnit::Second, 15, 15},
    DateStep{BinUnit::Second, 60, 60},
    DateStep{BinUnit::Second, 300, 300},
    DateStep{BinUnit::Second, 900, 900},
    DateStep{BinUnit::Second, 3600, 3600},
    DateStep{BinUnit::Second, 10'800, 10'800},
    DateStep{BinUnit::Second, 21'600, 21'600},
    DateStep{BinUnit::Second, 86'400, kSecondsPerDay},
    DateStep{BinUnit::Week, 1, 7 * kSecondsPerDay},
    DateStep{BinUnit::Week, 2, 14 * kSecondsPerDay},
    DateStep{BinUnit::Month, 1, kMonth},
    DateStep{BinUnit::Month, 3, 3 * kMonth},
    DateStep{BinUnit::Month, 6, 6 * kMonth},
    DateStep{BinUnit::Month, 12, 12 * kMonth},
    DateStep{BinUnit::Month, 24, 24 * kMonth},
    DateStep{BinUnit::Month, 60, 60 * kMonth},
    DateStep{BinUnit::Month, 120, 120 * kMonth},
    DateStep{BinUnit::Month, 240, 240 * kMonth},
    DateStep{BinUnit::Month, 600, 600 * kMonth},
    DateStep{BinUnit::Month, 1200, 1200 * kMonth},
    DateStep{BinUnit::Month, 6000, 6000 * kMonth},
    DateStep{BinUnit::Month, 24'000, 24'000 * kMonth},
};

std::string dateLabel(std::int64_t ticks, const DateStep& step) {
    const CalendarDay day = calendarDay(ticks);
    const std::string_view month = kMonths[static_cast<std::size_t>(day.month - 1) % kMonths.size()];
    if (step.unit == BinUnit::Month)
        return step.step % 12 == 0 ? fmt::format("{}", day.year) : fmt::format("{} {}", month, day.year);
    const std::int64_t second = (ticks - dayOf(ticks) * kTicksPerDay) / kTicksPerSecond;
    if (second == 0 || step.unit == BinUnit::Week || step.step >= 86'400)
        return fmt::format("{} {}", day.day, month);
    if (step.step < 60)
        return fmt::format("{:02}:{:02}:{:02}", second / 3600, second / 60 % 60, second % 60);
    return fmt::format("{:02}:{:02}", second / 3600, second / 60 % 60);
}

/// The exponent of the power of ten below the number, which is above 0.
int exponentOf(long double number) {
    return static_cast<int>(std::floor(std::log10(number) + 1e-12L));
}

struct NumberStep {
    int factor = 1;
    int exponent = 0;
};

NumberStep numberStep(long double least) {
    const int exponent = exponentOf(least);
    for (int further = 0;; ++further)
        for (const int factor : {1, 2, 5})
            if (factor * std::pow(10.0L, exponent + further) >= least * (1 - 1e-9L))
                return {factor, exponent + further};
}

std::string withUnit(double value, double unit, std::string_view name, int places) {
    std::string text = formatFixed(value / unit, places);
    if (text.find('.') != std::string::npos)
        text.erase(text.find_last_not_of('0') + 1);
    if (text.ends_with('.'))
        text.pop_back();
    return fmt::format("{}{}{}", text, name.empty() ? "" : " ", name);
}

std::string grouped(double whole) {
    return formatGrouped(static_cast<std::int64_t>(std::llround(whole)));
}

/// Of a tick among others up to `largest` with this step.
std::string tickLabel(double value, double largest, const NumberStep& step) {
    if (value == 0)
        return "0";
    if (largest >= kWholeNumbers || largest < 1e-5)
        return fmt::format("{:.3g}", value);
    if (largest >= 1e6) {
        const auto [unit, name, exponent] = largest >= 1e12  ? std::tuple(1e12, "T", 12)
                                            : largest >= 1e9 ? std::tuple(1e9, "B", 9)
                                                             : std::tuple(1e6, "M", 6);
        return step.exponent >= exponent - 3 ? withUnit(value, unit, name, std::max(0, exponent - step.exponent))
                                             : grouped(value);
    }
    return step.exponent >= 0 ? grouped(value) : formatFixed(value, -step.exponent);
}

} // namespace

double Scale::at(double value) const {
    const long double span = static_cast<long double>(m_high) - m_low;
    if (!(span > 0))
        return (m_from + m_to) / 2;
    const long double share = (static_cast<long double>(value) - m_low) / span;
    return m_from + (m_to - m_from) * static_cast<double>(std::clamp(share, -1.0L, 2.0L));
}

std::vector<Tick> numberTicks(double low, double high, int wanted, bool areWhole) {
    const long double span = static_cast<long double>(high) - low;
    const double largest = std::max(std::fabs(low), std::fabs(high));
    if (!(span > 0) || !std::isfinite(span) || wanted < 1 || span < largest * 1e-12L)
        return {};
    NumberStep step = numberStep(span / wanted);
    if (areWhole && step.exponent < 0)
        step = {1, 0};
    const long double width = step.factor * std::pow(10.0L, step.exponent);
    std::vector<Tick> ticks;
    for (long double index = std::ceil(low / width - 1e-9L); index * width <= high + width * 1e-9L; ++index) {
        const auto value = static_cast<double>(index * width);
        ticks.push_back({value, tickLabel(value, largest, step)});
        if (ticks.size() >= kMostTicks)
            break;
    }
    return ticks;
}

std::vector<Tick> dateTicks(double low, double high, int wanted) {
    if (!(high > low) || wanted < 1)
        return {};
    const auto step = std::find_if(kDateSteps.begin(), kDateSteps.end() - 1,
                                   [&](const DateStep& candidate) { return candidate.seconds * wanted >= high - low; });
    // Borders of bins of this step.
    const double unitSeconds = step->seconds;
    constexpr double kYear0 = -62'167'219'200.0;
    const double origin = step->unit == BinUnit::Month ? kYear0 : 0;
    Histogram borders{
        HistogramKind::Dates, step->unit, static_cast<std::int64_t>(std::floor((low - origin) / unitSeconds)) - 2,
        step->step,           0,          {}};
    std::vector<Tick> ticks;
    for (std::size_t i = 0; ticks.size() < kMostTicks && i < 4 * kMostTicks; ++i) {
        const std::int64_t border = borders.dateBorder(i);
        const double seconds = static_cast<double>(border) / static_cast<double>(kTicksPerSecond);
        if (seconds > high)
            break;
        if (seconds >= low)
            ticks.push_back({seconds, dateLabel(border, *step)});
    }
    return ticks;
}

std::string shortCount(double count) {
    if (count < 1e6)
        return grouped(count);
    return count < 1e9 ? withUnit(count, 1e6, "M", 1) : withUnit(count, 1e9, "B", 1);
}

std::string shownNumber(double value) {
    if (std::fabs(value) < kWholeNumbers && std::trunc(value) == value)
        return grouped(value);
    return std::fabs(value) < kWholeNumbers ? formatReadable(value) : formatReal(value);
}

std::string shownShare(double part, double whole) {
    if (!(whole > 0))
        return {};
    const double percent = 100 * part / whole;
    return formatFixed(percent, percent > 0 && percent < 1 ? 2 : 1) + " %";
}

std::string rowsText(std::int64_t rows, std::int64_t total) {
    std::string text = formatGrouped(rows) + (rows == 1 ? " row" : " rows");
    if (total > 0)
        text += ", " + shownShare(static_cast<double>(rows), static_cast<double>(total));
    return text;
}

} // namespace tavix::chart
