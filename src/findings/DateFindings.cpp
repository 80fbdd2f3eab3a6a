#include "findings/FieldRules.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::findings {

namespace {

constexpr std::int64_t kYear = 365 * kTicksPerDay;

std::string dayText(std::int64_t ticks) {
    return formatDate(dayOf(ticks) * kTicksPerDay);
}

/// The condition over dates as the expression language reads them; for other forms the list of the values.
std::string conditionFor(const FieldCase& field, std::string_view formula, const TextList& texts) {
    return field.figures.isTyped() ? std::string(formula) : texts.condition();
}

void addFuture(FieldCase& field) {
    const OrderedDates& dates = *field.dates;
    // A field that mostly looks ahead holds plans.
    constexpr double kPlans = 0.2;
    if (dates.future().rows == 0 || field.shareOf(dates.future()) > kPlans)
        return;
    std::uint64_t placeholders = 0;
    for (const Extreme& extreme : field.figures.highest)
        if (field.has("placeholder-dates") && extreme.ticks && *extreme.ticks - field.figures.now > 20 * kYear)
            placeholders += extreme.count;
    if (placeholders >= dates.future().rows)
        return;
    const bool isFar = dates.last() - field.figures.now > 5 * kYear;
    field.add("dates-in-the-future", isFar ? Likelihood::Likely : Likelihood::Possible, dates.future(),
              conditionFor(field, "todate(`Value`) > now()", dates.futureTexts()),
              fmt::format("the last one is {}", dayText(dates.last())));
}

void addOld(FieldCase& field) {
    const OrderedDates& dates = *field.dates;
    constexpr double kHistory = 0.05; ///< a larger share is what the field is about
    if (dates.old().rows > 0 && field.shareOf(dates.old()) <= kHistory)
        field.add("dates-before-1900", Likelihood::Likely, dates.old(),
                  conditionFor(field, "year(todate(`Value`)) < 1900", dates.oldTexts()),
                  fmt::format("the first one is {}", dayText(dates.first())));
}

/// Dates came every so often until they stopped. After a year it is an archive, and nobody expects more.
void addNoneLately(FieldCase& field) {
    const OrderedDates& dates = *field.dates;
    constexpr std::uint64_t kLeastDays = 30;
    constexpr std::int64_t kTimesTheUsual = 20;
    constexpr std::int64_t kLeastLag = 7 * kTicksPerDay;
    if (dates.days() < kLeastDays || dates.future().rows > 0 || dates.lastPast() == INT64_MIN)
        return;
    const std::int64_t usual = (dates.last() - dates.first()) / static_cast<std::int64_t>(dates.days());
    const std::int64_t lag = field.figures.now - dates.lastPast();
    if (lag >= std::max(kLeastLag, usual * kTimesTheUsual) && lag <= kYear)
        field.add("no-recent-dates", Likelihood::Possible, {}, "",
                  fmt::format("the last one is {}, {} days before the run", dayText(dates.last()), lag / kTicksPerDay));
}

template <typename List, typename Text>
std::string firstOf(const List& list, Text text) {
    std::string names;
    for (const auto& item : list)
        names += (names.empty() ? "" : ", ") + text(item);
    return names;
}

/// "12 of 1,461 days": a series that has a date for nearly every day or month.
void addGaps(FieldCase& field) {
    const OrderedDates& dates = *field.dates;
    constexpr std::uint64_t kLeastDays = 60;
    constexpr std::uint64_t kLeastMonths = 24;
    constexpr std::uint64_t kMostPercent = 5;
    const auto span = static_cast<std::uint64_t>(dayOf(dates.last()) - dayOf(dates.first()) + 1);
    const std::uint64_t missingDays = span - dates.days();
    if (dates.days() >= kLeastDays && missingDays > 0 && missingDays * 100 <= span * kMostPercent)
        field.add(
            "missing-days", Likelihood::Possible, {}, "",
            fmt::format("{} of {} days, such as {}", missingDays, span,
                        firstOf(dates.missingDays(), [](std::int64_t day) { return formatDate(day * kTicksPerDay); })));
    const std::uint64_t months = dates.months() + dates.missingMonthCount();
    if (dates.months() >= kLeastMonths && dates.missingMonthCount() > 0 &&
        dates.missingMonthCount() * 100 <= months * kMostPercent)
        field.add("missing-months", Likelihood::Possible, {}, "",
                  fmt::format("{} of {} months, such as {}", dates.missingMonthCount(), months,
                              firstOf(dates.missingMonths(), [](int month) {
                                  return fmt::format("{:04}-{:02}", month / 12, month % 12 + 1);
                              })));
}

/// A date of which the year alone was known.
void addNewYear(FieldCase& field) {
    const OrderedDates& dates = *field.dates;
    constexpr std::size_t kLeastDaysOfYear = 200; ///< a field of any day
    constexpr double kSpike = 0.03;               ///< ten times as many as on any other day
    constexpr std::uint64_t kLeast = 10;
    if (dates.daysOfYear() >= kLeastDaysOfYear && dates.newYear().rows >= kLeast &&
        field.shareOf(dates.newYear()) >= kSpike)
        field.add(
            "first-of-january", Likelihood::Likely, dates.newYear(),
            conditionFor(field, "month(todate(`Value`)) == 1 and day(todate(`Value`)) == 1", dates.newYearTexts()));
}

void addMidnight(FieldCase& field) {
    const OrderedDates& dates = *field.dates;
    constexpr std::size_t kLeastMinutes = 200; ///< of any time of day
    constexpr double kSpike = 0.03;
    constexpr std::uint64_t kLeast = 10;
    if (dates.minutesOfDay() >= kLeastMinutes && dates.midnight().rows >= kLeast &&
        field.shareOf(dates.midnight()) >= kSpike)
        field.add("dates-without-time", Likelihood::Likely, dates.midnight(),
                  field.figures.isTyped() ? "startof(todate(`Value`), 'day') == todate(`Value`)" : "");
}

} // namespace

void addDates(FieldCase& field) {
    if (field.dates->all().values == 0)
        return;
    addFuture(field);
    addOld(field);
    addNoneLately(field);
    addGaps(field);
    addNewYear(field);
    addMidnight(field);
}

} // namespace tavix::findings
