#include "findings/FieldRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

namespace tavix::findings {

namespace {

bool isFarOut(const FieldFigures& figures, double number) {
    constexpr double kByFar = 10; ///< times the interquartile range, where 3 is "far out"
    const double range = *figures.highQuartile - *figures.lowQuartile;
    return range > 0 &&
           (number < *figures.lowQuartile - kByFar * range || number > *figures.highQuartile + kByFar * range);
}

/// The few extremes that lie many times as far from the median as the next one, beyond any fence.
void takeFarOut(const FieldCase& field, const std::vector<Extreme>& extremes, std::vector<Counted>& found) {
    const FieldFigures& figures = field.figures;
    constexpr std::size_t kMost = 5;
    constexpr double kTimesTheNext = 5;
    for (std::size_t count = 1; count <= kMost && count < extremes.size(); ++count) {
        const Extreme& last = extremes[count - 1];
        if (!last.number || !extremes[count].number || !isFarOut(figures, *last.number))
            return;
        const double next = std::abs(*extremes[count].number - *figures.median);
        if (std::abs(*last.number - *figures.median) < kTimesTheNext * next)
            continue;
        for (std::size_t i = 0; i < count; ++i)
            found.push_back({extremes[i].text, extremes[i].count});
        return;
    }
}

void addFarOut(FieldCase& field) {
    constexpr double kMostShare = 0.01;
    if (!field.figures.median || !field.figures.lowQuartile || !field.figures.highQuartile)
        return;
    std::vector<Counted> found;
    takeFarOut(field, field.figures.lowest, found);
    takeFarOut(field, field.figures.highest, found);
    Hits hits;
    for (const Counted& value : found)
        hits.add(value.count);
    if (field.shareOf(hits) <= kMostShare)
        field.addListed("far-outliers", Likelihood::Likely, found);
}

/// A quantity that is never negative, except in a few rows that lie outside its usual range.
void addNegative(FieldCase& field) {
    const OrderedNumbers& numbers = *field.numbers;
    constexpr double kMostShare = 0.01;
    const FieldFigures& figures = field.figures;
    if (numbers.negative().rows == 0 || field.shareOf(numbers.negative()) > kMostShare || !figures.lowQuartile ||
        figures.lowest.empty() || !figures.lowest.front().number)
        return;
    // A quantity that passes through zero, such as a temperature, has negative values within its fences.
    const double fence = *figures.lowQuartile - 1.5 * (*figures.highQuartile - *figures.lowQuartile);
    if (*figures.lowest.front().number >= fence)
        return;
    TextList texts(kMostListed, 80);
    for (const Extreme& extreme : figures.lowest)
        if (extreme.number && *extreme.number < 0)
            texts.add(extreme.text, extreme.count);
    const bool areListed = texts.size() == numbers.negative().values;
    field.add("negative-numbers", Likelihood::Likely, numbers.negative(),
              figures.isTyped() ? "tonumber(`Value`) < 0"
              : areListed       ? texts.condition()
                                : "",
              fmt::format("the least one is {}", figures.lowest.front().text));
}

/// Far more multiples of ten than there would be in numbers that were measured or counted.
void addRound(FieldCase& field) {
    const OrderedNumbers& numbers = *field.numbers;
    constexpr std::uint64_t kLeastValues = 50;
    constexpr double kSpike = 0.5; ///< one in ten is to be expected
    constexpr double kStep = 0.95; ///< more are numbers in steps of ten
    constexpr double kSmall = 20;  ///< among small numbers ten is frequent anyway
    const FieldFigures& figures = field.figures;
    if (figures.typeCode != 'I' || numbers.all().values < kLeastValues || !figures.median || *figures.median < kSmall)
        return;
    const std::uint64_t others = numbers.all().rows - numbers.zero().rows;
    const double share = others > 0 ? static_cast<double>(numbers.tens().rows) / static_cast<double>(others) : 0;
    if (others >= kLeastForShares && share >= kSpike && share <= kStep)
        field.add("round-numbers", Likelihood::Possible, numbers.tens(),
                  "tointeger(`Value`) % 10 == 0 and tonumber(`Value`) != 0",
                  fmt::format("{:.0f} % of the numbers other than 0", 100 * share));
}

/// Zeros far below all other numbers, none of which is small.
void addZeros(FieldCase& field) {
    const OrderedNumbers& numbers = *field.numbers;
    constexpr double kFromShare = 0.001;
    constexpr double kToShare = 0.5;
    constexpr double kNearMedian = 0.2;
    const FieldFigures& figures = field.figures;
    const double share = field.shareOf(numbers.zero());
    if (numbers.zero().rows < 3 || numbers.negative().rows > 0 || share < kFromShare || share > kToShare ||
        !figures.median || !numbers.leastPositive() || numbers.all().values < kLeastRows)
        return;
    if (*numbers.leastPositive() >= kNearMedian * *figures.median && figures.isTyped())
        field.add("isolated-zeros", Likelihood::Likely, numbers.zero(), "tonumber(`Value`) == 0",
                  fmt::format("the next number is {}", *numbers.leastPositive()));
}

/// Consecutive numbers with a few holes.
void addIdentifierGaps(FieldCase& field) {
    const OrderedNumbers& numbers = *field.numbers;
    constexpr std::uint64_t kMostPercent = 5;
    const Hits& shown = field.values.shown();
    if (field.figures.typeCode != 'I' || shown.values != shown.rows || numbers.missing() == 0 ||
        shown.rows < kLeastForShares)
        return;
    const std::uint64_t span = shown.values + numbers.missing();
    if (numbers.missing() * 100 <= span * kMostPercent)
        field.add("identifier-gaps", Likelihood::Possible, {}, "",
                  fmt::format("{} of {} numbers are missing, the first is {}", numbers.missing(), span,
                              numbers.firstMissing()));
}

} // namespace

void addNumbers(FieldCase& field) {
    if (field.values.shown().rows < kLeastForShares)
        return;
    addFarOut(field);
    addNegative(field);
    addRound(field);
    addZeros(field);
    addIdentifierGaps(field);
}

} // namespace tavix::findings
