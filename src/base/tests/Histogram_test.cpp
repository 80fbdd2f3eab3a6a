#include "base/DateTicks.h"
#include "base/Histogram.h"
#include "base/NumberText.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

namespace tavix {
namespace {

std::uint64_t sumOf(const Histogram& histogram) {
    return std::accumulate(histogram.counts.begin(), histogram.counts.end(), std::uint64_t{0});
}

/// "first border +step: counts", long lists shortened.
std::string text(const Histogram& histogram) {
    const std::size_t bins = histogram.counts.size();
    std::string borders = histogram.kind == HistogramKind::Dates
                              ? formatDate(histogram.dateBorder(0)) + " to " + formatDate(histogram.dateBorder(bins))
                              : formatReal(static_cast<double>(histogram.border(0))) + " to " +
                                    formatReal(static_cast<double>(histogram.border(bins)));
    borders += fmt::format(" in {}:", bins);
    for (std::size_t i = 0; i < std::min<std::size_t>(bins, 6); ++i)
        borders += fmt::format(" {}", histogram.counts[i]);
    return borders;
}

/// Each number once.
Histogram ofNumbers(std::vector<long double> numbers, bool areWhole) {
    std::sort(numbers.begin(), numbers.end());
    NumberBins bins(numbers.front(), numbers.back(), areWhole);
    for (const long double number : numbers)
        bins.add(number, 1);
    return bins.take();
}

TEST(NumberBins, HaveBordersThatPeopleCanRead) {
    EXPECT_EQ(text(ofNumbers({3, 4, 4, 9}, true)), "3 to 10 in 7: 1 2 0 0 0 0");
    EXPECT_EQ(text(ofNumbers({-60, 0, 60}, true)), "-60 to 62 in 61: 1 0 0 0 0 0");
    EXPECT_EQ(text(ofNumbers({12, 99'950}, true)), "0 to 100000 in 50: 1 0 0 0 0 0");
    EXPECT_EQ(text(ofNumbers({0.1, 0.2, 0.3, 0.30000000000000004}, false)), "0.1 to 0.305 in 41: 1 0 0 0 0 0");
    EXPECT_EQ(text(ofNumbers({7}, true)), "7 to 8 in 1: 1");
    EXPECT_EQ(text(ofNumbers({0}, false)), "0 to 1 in 1: 1");
    EXPECT_EQ(text(ofNumbers({2.5}, false)), "2.5 to 2.55 in 1: 1");
}

TEST(NumberBins, HoldEveryNumberWithinItsBorders) {
    const std::vector<std::vector<long double>> kCases = {
        {-1.7e308, 0, 1.7e308},
        {1e300, 1.0000001e300},
        {5e-324, 1e-323, 2.5e-322},
        {1e15 + 0.125, 1e15 + 0.25},
        {9'223'372'036'854'775'000.0L, 9'223'372'036'854'775'807.0L},
        {-9'223'372'036'854'775'807.0L, 9'223'372'036'854'775'807.0L},
        {0.1, 0.7, 0.30000000000000004, 1.1, 6.3},
    };
    for (std::vector<long double> numbers : kCases) {
        const bool areWhole = numbers.back() > 1e18L && numbers.back() < 1e19L;
        const Histogram histogram = ofNumbers(numbers, areWhole);
        SCOPED_TRACE(text(histogram));
        EXPECT_TRUE(histogram.isSound());
        EXPECT_LE(histogram.counts.size(), 64U);
        EXPECT_EQ(sumOf(histogram), numbers.size());
        std::vector<std::uint64_t> expected(histogram.counts.size());
        for (const long double number : numbers)
            for (std::size_t i = 0; i < expected.size(); ++i)
                expected[i] += number >= histogram.border(i) && number < histogram.border(i + 1) ? 1 : 0;
        EXPECT_EQ(histogram.counts, expected);
    }
}

TEST(NumberBins, PutANumberOnABorderIntoTheUpperRange) {
    std::vector<long double> numbers;
    for (int i = 0; i <= 600; ++i)
        numbers.push_back(*parseNumber(fmt::format("{}.{:02}", i / 100, i % 100)));
    EXPECT_EQ(text(ofNumbers(numbers, false)), "0 to 6.1 in 61: 10 10 10 10 10 10");
}

Histogram ofDates(const std::vector<std::string>& dates) {
    DateBins bins;
    for (const std::string& date : dates)
        bins.add(*parseDate(date), 1);
    return bins.take();
}

TEST(DateBins, AreCalendarUnits) {
    EXPECT_EQ(text(ofDates({"2026-11-21 08:00:01", "2026-11-21 08:00:03.5", "2026-11-21 08:00:04"})),
              "2026-11-21 08:00:01 to 2026-11-21 08:00:05 in 4: 1 0 1 1");
    EXPECT_EQ(text(ofDates({"2026-11-21 08:59", "2026-11-22 07:00"})),
              "2026-11-21 08:30:00 to 2026-11-22 07:30:00 in 46: 1 0 0 0 0 0");
    EXPECT_EQ(text(ofDates({"2026-01-31", "2026-02-01", "2026-03-01"})), "2026-01-31 to 2026-03-02 in 30: 1 1 0 0 0 0");
    EXPECT_EQ(text(ofDates({"2026-01-01", "2026-01-05", "2026-06-30"})), "2025-12-29 to 2026-07-06 in 27: 1 1 0 0 0 0")
        << "weeks from Monday";
    EXPECT_EQ(text(ofDates({"1969-12-31 23:59:59", "1972-01-01"})), "1969-12-01 to 1972-02-01 in 26: 1 0 0 0 0 0");
    EXPECT_EQ(text(ofDates({"1850-06-01", "1899-12-30", "1900-01-01"})), "1850-01-01 to 1901-01-01 in 51: 1 0 0 0 0 0");
    EXPECT_EQ(text(ofDates({"0001-01-01", "9999-12-31"})), "0000-01-01 to 10000-01-01 in 20: 1 0 0 0 0 0");
    EXPECT_EQ(text(ofDates({"2026-11-21"})), "2026-11-21 to 2026-11-22 in 1: 1");
}

TEST(DateBins, DoNotDependOnHowManyDatesTheyWereMadeFrom) {
    const std::int64_t first = *parseDate("2019-12-30 00:00:07");
    for (const std::int64_t stride : {61, 3601, 86'407, 700'001}) {
        DateBins bins;
        std::vector<std::int64_t> all;
        for (std::int64_t i = 0; i < 20'000; ++i) {
            all.push_back(first + i * stride * kTicksPerSecond);
            bins.add(all.back(), 2);
        }
        const Histogram histogram = bins.take();
        SCOPED_TRACE(text(histogram));
        ASSERT_TRUE(histogram.isSound());
        EXPECT_LE(histogram.counts.size(), 60U);
        std::vector<std::uint64_t> expected(histogram.counts.size());
        std::size_t at = 0;
        for (const std::int64_t ticks : all) {
            while (ticks >= histogram.dateBorder(at + 1))
                ++at;
            expected[at] += 2;
        }
        EXPECT_EQ(histogram.counts, expected);
    }
}

TEST(LengthBins, CountExactlyUpToThousandsAndInWiderRangesBeyond) {
    LengthBins lengths;
    for (const std::uint64_t length : {40, 0, 3, 3, 41})
        lengths.add(length, 1);
    EXPECT_EQ(text(lengths.make(0, 41)), "0 to 42 in 42: 1 0 0 2 0 0");
    lengths.add(1'000'000, 5);
    EXPECT_EQ(text(lengths.make(0, 1'000'000)), "0 to 1024000 in 40: 5 0 0 0 0 0");
    EXPECT_EQ(sumOf(lengths.make(0, 1'000'000)), 10U);
}

TEST(Histogram, KnowsWhetherItsBordersCanBeComputed) {
    const Histogram sound{HistogramKind::Numbers, BinUnit::Number, 0, 1, 0, {1}};
    EXPECT_TRUE(sound.isSound());
    const auto isSoundWith = [&](auto change) {
        Histogram changed = sound;
        change(changed);
        return changed.isSound();
    };
    EXPECT_FALSE(isSoundWith([](Histogram& h) { h.counts.clear(); }));
    EXPECT_FALSE(isSoundWith([](Histogram& h) { h.counts.assign(101, 1); }));
    EXPECT_FALSE(isSoundWith([](Histogram& h) { h.step = 0; }));
    EXPECT_FALSE(isSoundWith([](Histogram& h) { h.first = INT64_MAX; }));
    EXPECT_FALSE(isSoundWith([](Histogram& h) { h.exponent = -1000; }));
    EXPECT_FALSE(isSoundWith([](Histogram& h) { h.unit = BinUnit::Week; }));
    EXPECT_FALSE(isSoundWith([](Histogram& h) { h.kind = HistogramKind::Dates; }));
    const auto isSoundDate = [&](BinUnit unit, std::int64_t first) {
        return isSoundWith([&](Histogram& h) {
            h.kind = HistogramKind::Dates;
            h.unit = unit;
            h.first = first;
        });
    };
    EXPECT_TRUE(isSoundDate(BinUnit::Month, 12));
    EXPECT_TRUE(isSoundDate(BinUnit::Week, -2000));
    EXPECT_FALSE(isSoundDate(BinUnit::Second, INT64_MIN));
    EXPECT_FALSE(isSoundDate(BinUnit::Month, 1'000'000));
}

} // namespace
} // namespace tavix
