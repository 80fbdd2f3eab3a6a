#include "base/Ascii.h"
#include "base/DateTicks.h"
#include "findings/FieldRules.h"
#include "findings/Placeholders.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tavix::findings {

namespace {

void addWords(FieldCase& field) {
    const bool isRead = field.figures.hasFigures || field.figures.isTyped();
    // A field of signs means them.
    const auto longest = field.values.longest();
    const bool isOfSigns = !longest.empty() && longest.front().length <= 2;
    // Among codes of three letters UNK may be as good as any other.
    const bool isOfCodes = field.isOfOneLength();
    std::vector<Counted> placeholders;
    std::vector<Counted> tests;
    const TextList& list = field.values.placeholders();
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Counted value = list.at(i);
        if (isOfCodes && std::all_of(value.text.begin(), value.text.end(), isAsciiLetter))
            continue;
        if (isTestWord(value.text))
            tests.push_back(value);
        else if (isOrdinaryWord(value.text) ? isRead : !isOfSigns || isRead)
            placeholders.push_back(value);
    }
    field.addListed("placeholder-words", isRead ? Likelihood::Definite : Likelihood::Likely, placeholders);
    field.addListed("test-values", Likelihood::Possible, tests);
}

void addRuns(FieldCase& field) {
    const Hits& runs = field.values.passed(ValueTest::RunOfOneCharacter);
    // Among codes of one length such a code may be as good as any other.
    if (runs.values == 0 || field.isOfOneLength() || field.shareOf(runs) > 0.5)
        return;
    field.add("placeholder-characters", Likelihood::Likely, runs,
              std::string(conditionOf(ValueTest::RunOfOneCharacter)));
}

/// A day that programs store for a missing date.
bool isPlaceholderDay(std::int64_t ticks) {
    const CalendarDay day = calendarDay(ticks);
    struct Day {
        int year;
        int month;
        int day;
    };
    constexpr Day kDays[] = {{1, 1, 1},      {1582, 10, 15}, {1600, 1, 1},   {1601, 1, 1},   {1700, 1, 1},
                             {1753, 1, 1},   {1800, 1, 1},   {1899, 12, 30}, {1899, 12, 31}, {1900, 1, 1},
                             {1901, 1, 1},   {1970, 1, 1},   {2049, 12, 31}, {2079, 6, 6},   {2099, 12, 31},
                             {2199, 12, 31}, {2200, 1, 1},   {2999, 12, 31}, {3000, 1, 1},   {3000, 12, 31},
                             {4712, 12, 31}, {9999, 1, 1},   {9999, 9, 9},   {9999, 12, 31}};
    return std::any_of(std::begin(kDays), std::end(kDays), [&](const Day& known) {
        return known.year == day.year && known.month == day.month && known.day == day.day;
    });
}

/// A placeholder lies years away from the dates that mean something.
void takeDates(const std::vector<Extreme>& extremes, std::vector<Counted>& found) {
    constexpr std::int64_t kFarAway = std::int64_t{3} * 365 * kTicksPerDay;
    for (std::size_t i = 0; i + 1 < extremes.size(); ++i) {
        if (!extremes[i].ticks || !extremes[i + 1].ticks || !isPlaceholderDay(*extremes[i].ticks))
            return;
        // Several placeholders may follow each other.
        std::size_t next = i + 1;
        while (next < extremes.size() && extremes[next].ticks && isPlaceholderDay(*extremes[next].ticks))
            ++next;
        if (next == extremes.size() || !extremes[next].ticks ||
            std::abs(*extremes[next].ticks - *extremes[i].ticks) < kFarAway)
            return;
        found.push_back({extremes[i].text, extremes[i].count});
    }
}

/// 99, 999, -1, -99, ...: all nines, or minus one.
bool isPlaceholderNumber(double number) {
    constexpr std::array<double, 8> kNines = {99, 999, 9999, 99'999, 999'999, 9'999'999, 99'999'999, 999'999'999};
    return number == -1 || std::find(kNines.begin(), kNines.end(), std::abs(number)) != kNines.end();
}

/// Such a number is at the end of the field, comes again and again, and lies far from the next value.
void takeNumber(const FieldFigures& figures, const std::vector<Extreme>& extremes, std::vector<Counted>& found) {
    constexpr std::uint64_t kAgain = 3;
    constexpr double kTimesTheNext = 3; ///< in distance from the median
    if (extremes.size() < 2 || !extremes[0].number || !extremes[1].number || !figures.median)
        return;
    const double distance = std::abs(*extremes[0].number - *figures.median);
    const double next = std::abs(*extremes[1].number - *figures.median);
    // Minus one is close to small numbers, and the only negative one.
    const bool isAlone =
        *extremes[0].number == -1 ? *extremes[1].number >= 0 && *figures.median > 1 : distance >= kTimesTheNext * next;
    if (isPlaceholderNumber(*extremes[0].number) && extremes[0].count >= kAgain && isAlone)
        found.push_back({extremes[0].text, extremes[0].count});
}

} // namespace

void addPlaceholders(FieldCase& field) {
    addWords(field);
    addRuns(field);
    std::vector<Counted> dates;
    takeDates(field.figures.lowest, dates);
    takeDates(field.figures.highest, dates);
    field.addListed("placeholder-dates", Likelihood::Likely, dates);
    std::vector<Counted> numbers;
    if (field.values.shown().rows >= kLeastForShares) {
        takeNumber(field.figures, field.figures.lowest, numbers);
        takeNumber(field.figures, field.figures.highest, numbers);
    }
    field.addListed("placeholder-numbers", Likelihood::Likely, numbers);
}

} // namespace tavix::findings
