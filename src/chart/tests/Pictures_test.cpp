#include "access/DistributionFilter.h"
#include "base/DateTicks.h"
#include "chart/BarsPicture.h"
#include "chart/HistogramPicture.h"
#include "chart/tests/DrawingText.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <cmath>
#include <string>
#include <vector>

namespace tavix::chart {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using testing::hits;
using ::testing::IsEmpty;
using testing::isInside;
using ::testing::IsSupersetOf;
using ::testing::Not;
using testing::shapesOf;
using testing::texts;

FieldHistogram numbers(double low, double width, const std::vector<std::int64_t>& counts) {
    FieldHistogram histogram;
    for (std::size_t i = 0; i < counts.size(); ++i) {
        const double from = low + static_cast<double>(i) * width;
        histogram.bins.push_back(
            {from, from + width, fmt::format("{}", from), fmt::format("{}", from + width), counts[i]});
        histogram.total += counts[i];
    }
    return histogram;
}

FieldHistogram dates(BinUnit unit, const std::vector<std::string>& borders) {
    FieldHistogram histogram{HistogramKind::Dates, unit, {}, 0};
    for (std::size_t i = 0; i + 1 < borders.size(); ++i) {
        const auto seconds = [](const std::string& text) {
            return static_cast<double>(parseDate(text).value_or(0)) / static_cast<double>(kTicksPerSecond);
        };
        histogram.bins.push_back({seconds(borders[i]), seconds(borders[i + 1]), borders[i], borders[i + 1], 5});
        histogram.total += 5;
    }
    return histogram;
}

TEST(HistogramPicture, DrawsABarForEachRangeWithRows) {
    const HistogramPicture picture(numbers(1000, 50, {0, 200, 318, 0, 2865}), {});
    const Drawing drawing = picture.draw(plainCanvas(500, 300));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_EQ(picture.title(), "Distribution of numbers");
    EXPECT_EQ(picture.description(),
              "3,383 rows in 5 ranges from 1,000 to 1,250. Most are in 1,200 to 1,250: 2,865 rows, 84.7 %.");
    EXPECT_THAT(hits(drawing), ElementsAre("1,050 to 1,100: 200 rows, 5.9 %", "1,100 to 1,150: 318 rows, 9.4 %",
                                           "1,200 to 1,250: 2,865 rows, 84.7 %"));
    EXPECT_THAT(texts(drawing),
                ElementsAre("0", "1,000", "2,000", "1,000", "1,050", "1,100", "1,150", "1,200", "1,250"));
    const auto bars = shapesOf<Box>(drawing, Role::Bar);
    ASSERT_EQ(bars.size(), 3U);
    EXPECT_NEAR(bars[0].rect.height / bars[2].rect.height, 200.0 / 2865, 0.01);
    EXPECT_LT(bars[0].rect.x, bars[1].rect.x);
    EXPECT_EQ(drawing.hitAt({bars[1].rect.x + 1, 20}), 1) << "anywhere in the column";
    EXPECT_EQ(drawing.hitAt({1, 1}), -1);
}

TEST(HistogramPicture, MarksQuartilesMeanAndFences) {
    const ValueMarks marks{10, 12, 14, 15.5, "10", "12", "14", "15.5"};
    const Drawing drawing =
        HistogramPicture(numbers(0, 1, std::vector<std::int64_t>(40, 3)), marks).draw(plainCanvas(500, 300));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_THAT(texts(drawing), Contains("Median 12 · mean 15.5 · middle half 10 to 14"));
    EXPECT_EQ(drawing.hits.back().text, "Median 12 · mean 15.5 · middle half 10 to 14 · fences at 4 and 20");
    EXPECT_EQ(drawing.hits.back().action, Action{});
    const auto fences = shapesOf<Line>(drawing, Role::Fence);
    EXPECT_EQ(std::ranges::count_if(fences, &Line::isDashed), 2);
    const auto median = shapesOf<Line>(drawing, Role::Accent);
    ASSERT_EQ(median.size(), 1U);
    EXPECT_THAT(shapesOf<Box>(drawing, Role::Bar), Contains(::testing::Truly([&](const Box& bar) {
                    return std::fabs(bar.rect.x + bar.rect.width / 2 - median[0].from.x) < 1;
                })))
        << "a whole number is in the middle of its bar";
}

TEST(HistogramPicture, DrawsAnySpan) {
    const ValueMarks huge{-1.7e308, 0, 1.7e308, 0, "-1.7e+308", "0", "1.7e+308", "0"};
    const ValueMarks same{7, 7, 7, 7, "7", "7", "7", "7"};
    struct {
        FieldHistogram histogram;
        ValueMarks marks;
    } const kCases[] = {
        {numbers(-1.7e308, 5e307, {1, 2, 3, 4}), huge}, {numbers(1e300, 1e285, {5}), same},
        {numbers(1e-320, 1e-321, {1, 1}), {}},          {numbers(-5, 0.001, {7'000'000'000}), same},
        {numbers(1e15, 0.125, {1, 1, 1}), same},        {numbers(0, 1, {0}), {}},
    };
    for (const auto& [histogram, marks] : kCases) {
        const HistogramPicture picture(histogram, marks);
        for (const double width : {0.0, 90.0, 260.0, 1400.0}) {
            const Drawing drawing = picture.draw(plainCanvas(width, 240));
            EXPECT_TRUE(isInside(drawing)) << picture.description() << width;
            EXPECT_EQ(drawing.hits.empty(), width < 100 || histogram.total == 0) << picture.description() << width;
        }
        EXPECT_THAT(picture.draw(plainCanvas(400, 30)).shapes, IsEmpty()) << "too low";
    }
}

TEST(HistogramPicture, NamesRangesAsPeopleDo) {
    const auto named = [](const FieldHistogram& histogram) { return rangeText(histogram, histogram.bins.front()); };
    EXPECT_EQ(named(numbers(3, 1, {1})), "3");
    EXPECT_EQ(named(numbers(0.5, 1, {1})), "0.5 to 1.5");
    FieldHistogram lengths = numbers(1, 1, {1});
    lengths.kind = HistogramKind::Lengths;
    EXPECT_EQ(named(lengths), "1 character");
    EXPECT_EQ(named(dates(BinUnit::Second, {"2026-11-21", "2026-11-22"})), "2026-11-21");
    EXPECT_EQ(named(dates(BinUnit::Second, {"2026-11-21 06:00:00", "2026-11-21 12:00:00"})),
              "2026-11-21 06:00:00 to 2026-11-21 12:00:00");
    EXPECT_EQ(named(dates(BinUnit::Week, {"2026-11-16", "2026-11-23"})), "week from 2026-11-16");
    EXPECT_EQ(named(dates(BinUnit::Month, {"1899-12-01", "1900-01-01"})), "1899-12");
    EXPECT_EQ(named(dates(BinUnit::Month, {"1899-01-01", "1900-01-01"})), "1899");
    EXPECT_EQ(named(dates(BinUnit::Month, {"1890-01-01", "1900-01-01"})), "1890-01-01 to 1900-01-01");
}

TEST(HistogramPicture, FiltersByARange) {
    const auto filter = [](const FieldHistogram& histogram) {
        const std::string code = rangeFilter(histogram, histogram.bins.front());
        const auto compiled = DistributionFilter::compile(code);
        EXPECT_TRUE(compiled) << code << ": " << (compiled ? "" : compiled.error().text);
        return code;
    };
    EXPECT_EQ(filter(numbers(-3, 1, {1})), "tonumber(`Value`) = -3");
    EXPECT_EQ(filter(numbers(1e20, 1e20, {1})), "tonumber(`Value`) >= 1e+20 and tonumber(`Value`) < 2e+20");
    FieldHistogram lengths = numbers(10, 5, {1});
    lengths.kind = HistogramKind::Lengths;
    EXPECT_EQ(filter(lengths), "length(`Value`) >= 10 and length(`Value`) < 15");
    EXPECT_EQ(filter(dates(BinUnit::Month, {"2026-11-01", "2026-12-01"})),
              "todate(`Value`) >= '2026-11-01' and todate(`Value`) < '2026-12-01'");
    EXPECT_EQ(filter(dates(BinUnit::Month, {"0000-01-01", "0500-01-01"})), "todate(`Value`) < '0500-01-01'");
    EXPECT_EQ(filter(dates(BinUnit::Month, {"9500-01-01", "10000-01-01"})), "todate(`Value`) >= '9500-01-01'");
}

TEST(BarsPicture, DrawsSharesOfTheWhole) {
    const BarsPicture picture("Values",
                              {{"Bern", 600, {ActionKind::DrillValue, "Bern"}},
                               {std::string(300, 'x'), 399, {ActionKind::DrillValue, "x"}},
                               {"Other", 1, {}, true}},
                              1000, "of 1,000 records");
    const Drawing drawing = picture.draw(plainCanvas(400, 200));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_THAT(texts(drawing), IsSupersetOf({"Bern", "600", "60.0 %", "Other", "0.10 %", "of 1,000 records"}));
    EXPECT_THAT(texts(drawing), Not(Contains(std::string(300, 'x')))) << "cut to the room that it has";
    const auto bars = shapesOf<Box>(drawing, Role::Bar);
    ASSERT_EQ(bars.size(), 2U);
    EXPECT_NEAR(bars[0].rect.width / bars[1].rect.width, 600.0 / 399, 0.01);
    EXPECT_EQ(shapesOf<Box>(drawing, Role::Pale).size(), 1U);
    EXPECT_EQ(hits(drawing)[0], "Bern: 600 rows, 60.0 %");
    EXPECT_EQ(picture.draw(plainCanvas(400, 70)).hits.size(), 1U) << "as many as fit";
    EXPECT_THAT(picture.draw(plainCanvas(120, 200)).shapes, IsEmpty()) << "too narrow";
    EXPECT_TRUE(isInside(BarsPicture("Values", {{"", 0}}, 0, "").draw(plainCanvas(300, 100))));
}

} // namespace
} // namespace tavix::chart
