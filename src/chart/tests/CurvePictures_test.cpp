#include "access/DistributionFilter.h"
#include "chart/OutlierPicture.h"
#include "chart/QuantilePicture.h"
#include "chart/RankPicture.h"
#include "chart/tests/DrawingText.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

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
using testing::shapesOf;
using ::testing::SizeIs;
using testing::texts;

TEST(RankPicture, DrawsFewValuesWithABarEach) {
    const RankPicture picture({{"Bern", 60, {ActionKind::DrillValue, "Bern"}}, {"Ulm", 30, {}}, {"Rom", 10, {}}},
                              {{3, 100}}, 3, 100);
    const Drawing drawing = picture.draw(plainCanvas(400, 260));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_EQ(picture.description(), "1 of 3 values covers half of the rows, 2 cover 90 %.");
    EXPECT_THAT(hits(drawing), ElementsAre("Rank 1, Bern: 60 rows, 60.0 %",
                                           "Rank 2, Ulm: 30 rows, 30.0 %; the first 2 together 90.0 %",
                                           "Rank 3, Rom: 10 rows, 10.0 %; the first 3 together 100.0 %"));
    EXPECT_THAT(texts(drawing), IsSupersetOf({"0 %", "50 %", "100 %", "1", "2", "3"}));
    EXPECT_THAT(shapesOf<Box>(drawing, Role::Bar), SizeIs(3));
    const auto curves = shapesOf<Curve>(drawing, Role::Accent);
    ASSERT_EQ(curves.size(), 1U);
    EXPECT_EQ(curves[0].points.size(), 3U);
    EXPECT_GT(curves[0].points[0].y, curves[0].points[2].y) << "it rises";
    EXPECT_EQ(drawing.hits[0].action, (Action{ActionKind::DrillValue, "Bern"}));
}

TEST(RankPicture, DrawsMillionsOnALogarithmicAxis) {
    std::vector<RankPicture::Value> first;
    std::int64_t rows = 0;
    for (int i = 0; i < 100; ++i) {
        first.push_back({fmt::format("v{}", i), 1000 - i, {}});
        rows += 1000 - i;
    }
    const RankPicture picture(first, {{4096, 200'000}, {5'000'000, 5'195'904}}, 5'000'000, 5'195'904);
    const Drawing drawing = picture.draw(plainCanvas(500, 300));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_THAT(texts(drawing), IsSupersetOf({"1", "10", "100", "1,000", "10,000", "100,000", "1 M"}));
    EXPECT_THAT(hits(drawing), IsSupersetOf({"The most frequent value: 1,000 rows, 0.02 %",
                                             "The first 100 of 5,000,000 values: 95,050 rows, 1.8 %",
                                             "The first 5,000,000 of 5,000,000 values: 5,195,904 rows, 100.0 %"}));
    EXPECT_EQ(rows, 95'050);
    for (const HitArea& hit : drawing.hits) {
        if (hit.text.starts_with("The first 50 ")) {
            EXPECT_EQ(hit.action, (Action{ActionKind::FilterValues, "`Count` >= 951"}));
            EXPECT_TRUE(DistributionFilter::compile(hit.action.text.view()));
        } else if (hit.text.starts_with("The first 200 ")) {
            EXPECT_EQ(hit.action.kind, ActionKind::None) << "its count is not known";
        }
    }
    EXPECT_EQ(RankPicture({}, {{5'000'000, 5'000'000}}, 5'000'000, 5'000'000).description(),
              "All 5,000,000 values are unique.");
}

TEST(RankPicture, DrawsWhatIsHardlyThere) {
    for (const RankPicture& picture :
         {RankPicture({{"", 1, {}}}, {{1, 1}}, 1, 1), RankPicture({}, {}, 0, 0), RankPicture({}, {}, 77, 77)}) {
        EXPECT_TRUE(isInside(picture.draw(plainCanvas(300, 200)))) << picture.description();
        EXPECT_THAT(picture.draw(plainCanvas(40, 200)).shapes, IsEmpty());
    }
}

TEST(QuantilePicture, DrawsTheCurveOfValues) {
    const QuantilePicture picture(
        HistogramKind::Numbers,
        {{1, -5, "-5"}, {25, 10, "10"}, {50, 20, "20"}, {75, 20, "20"}, {99, 900.25, "900.25"}});
    const Drawing drawing = picture.draw(plainCanvas(420, 260));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_EQ(picture.description(), "1 %: -5; 25 %: 10; 50 %: 20; 75 %: 20; 99 %: 900.25.");
    EXPECT_THAT(texts(drawing), ElementsAre("0", "200", "400", "600", "800", "0 %", "25 %", "50 %", "75 %", "100 %"));
    EXPECT_THAT(hits(drawing), Contains("75 % of the values are at most 20"));
    EXPECT_EQ(drawing.hits[4].action, (Action{ActionKind::FilterValues, "tonumber(`Value`) <= 900.25"}));
    EXPECT_TRUE(DistributionFilter::compile(drawing.hits[0].action.text.view()));

    const Drawing dates = QuantilePicture(HistogramKind::Dates, {{1, -2.2e9, "1900-04-14"}, {99, 1.7e9, "2023-11-14"}})
                              .draw(plainCanvas(420, 260));
    EXPECT_THAT(texts(dates), IsSupersetOf({"1920", "2000"}));
    EXPECT_EQ(dates.hits[0].action.text, KvbString("todate(`Value`) <= '1900-04-14'"));
    EXPECT_TRUE(DistributionFilter::compile(dates.hits[0].action.text.view()));
    for (const double value : {7.0, 1e300, -1e-300})
        EXPECT_TRUE(isInside(
            QuantilePicture(HistogramKind::Numbers, {{1, value, "a"}, {99, value, "a"}}).draw(plainCanvas(300, 200))));
}

FieldHistogram bins() {
    FieldHistogram histogram;
    for (int i = 0; i < 40; ++i)
        histogram.bins.push_back({i * 1.0, i + 1.0, fmt::format("{}", i), fmt::format("{}", i + 1), i % 7});
    return histogram;
}

TEST(OutlierPicture, MarksFencesAndCounts) {
    const OutlierPicture picture({{"0", 3, 1, 0.0, {ActionKind::DrillValue, "0"}}, {"1", 1, 0, 1.0}},
                                 {{"39", 12, 2, 39.0, {ActionKind::DrillValue, "39"}}}, bins(),
                                 OutlierPicture::Quartiles{15, 20});
    const Drawing drawing = picture.draw(plainCanvas(420, 360));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_EQ(picture.description(), "Lowest: 0, 1 of 2 beyond a fence. Highest: 39, 1 of 1 beyond a fence.");
    EXPECT_THAT(hits(drawing), ElementsAre("0: 3 rows, beyond 1.5 times the interquartile range", "1: 1 row",
                                           "39: 12 rows, beyond 3 times the interquartile range"));
    EXPECT_EQ(drawing.hits[2].action, (Action{ActionKind::DrillValue, "39"}));
    EXPECT_THAT(texts(drawing), IsSupersetOf({"Lowest", "Highest", "1.5 × IQR", "3 × IQR", "12"}));
    EXPECT_THAT(shapesOf<Dot>(drawing, Role::Fence), SizeIs(2));
    EXPECT_THAT(shapesOf<Dot>(drawing, Role::Accent), SizeIs(1));
    EXPECT_THAT(shapesOf<Line>(drawing, Role::Fence), SizeIs(3))
        << "the fences at 0, 7.5, 27.5 and 35, less the one at the edge";
}

TEST(OutlierPicture, OfTextsHasListsAlone) {
    const std::string longText(500, 'x');
    const OutlierPicture picture({{"Aachen", 1}, {longText, 2}}, {}, std::nullopt, std::nullopt);
    const Drawing drawing = picture.draw(plainCanvas(300, 200));
    EXPECT_TRUE(isInside(drawing));
    EXPECT_EQ(drawing.hits.size(), 2U);
    EXPECT_THAT(shapesOf<Dot>(drawing, Role::Accent), IsEmpty());
    EXPECT_THAT(picture.draw(plainCanvas(100, 200)).shapes, IsEmpty());
}

} // namespace
} // namespace tavix::chart
