#include "report/ChangeWeights.h"
#include "report/DistributionComparison.h"

#include <gtest/gtest.h>

#include <map>

namespace tavix {
namespace {

/// A numeric field with these metrics.
FieldRecord field(const std::map<MetricId, const char*>& metrics) {
    FieldRecord record;
    record.typeCode = "I";
    for (const auto& [id, text] : metrics)
        record.metrics[index(id)] = text;
    return record;
}

const FieldRecord kBefore = field({{MetricId::Count, "1000"},
                                   {MetricId::NullCount, "20"},
                                   {MetricId::UniqueCount, "500"},
                                   {MetricId::MinimumValue, "0"},
                                   {MetricId::MaximumValue, "200"},
                                   {MetricId::Mean, "50"},
                                   {MetricId::ActualType, "integer"}});

ChangeWeight weightOf(MetricId metric, const char* after, const char* rows) {
    FieldRecord later = kBefore;
    later.metrics[index(MetricId::Count)] = rows;
    later.metrics[index(metric)] = after;
    return weightOfMetric(metric, kBefore, later);
}

TEST(ChangeWeights, ARowOfAFieldWeighsItsShare) {
    EXPECT_EQ((ChangeWeight{8, false}), weightOf(MetricId::NullCount, "100", "1000"));
    EXPECT_EQ((ChangeWeight{5, false}), weightOf(MetricId::UniqueCount, "450", "1000"));
    EXPECT_EQ((ChangeWeight{0.1, false}), weightOf(MetricId::MaximumValue, "250", "1000"));
    EXPECT_EQ(kWholeChange, weightOf(MetricId::ActualType, "text", "1000"));
    EXPECT_EQ((ChangeWeight{0, false}), weightOf(MetricId::Ordinal, "4", "1000"));
}

TEST(ChangeWeights, AMeanWeighsTheRowsThatMustHaveMovedAcrossTheRange) {
    EXPECT_EQ((ChangeWeight{5, false}), weightOf(MetricId::Mean, "60", "1000"));
    EXPECT_EQ((ChangeWeight{100, false}), weightOf(MetricId::Mean, "1e9", "1000"));
    EXPECT_EQ((ChangeWeight{0.1, false}), weightOf(MetricId::Mean, "none", "1000")) << "a row at least";
    FieldRecord dates = kBefore;
    dates.typeCode = "D";
    EXPECT_EQ(0.1, weightOfMetric(MetricId::Mean, dates, dates).percent);
}

TEST(ChangeWeights, WhatFollowsFromTheNumberOfRowsWeighsNothing) {
    const ChangeWeight follows{0, true};
    EXPECT_EQ((ChangeWeight{50, true}), weightOf(MetricId::Count, "2000", "2000"));
    EXPECT_EQ(follows, weightOf(MetricId::NullCount, "40", "2000"));
    EXPECT_EQ((ChangeWeight{1, false}), weightOf(MetricId::NullCount, "20", "2000"));
    for (const char* texts : {"500", "700", "1000"})
        EXPECT_EQ(follows, weightOf(MetricId::UniqueCount, texts, "2000")) << texts;
    EXPECT_EQ((ChangeWeight{5, false}), weightOf(MetricId::UniqueCount, "1100", "2000"));
    EXPECT_EQ((ChangeWeight{5, false}), weightOf(MetricId::UniqueCount, "400", "2000"));
    EXPECT_EQ(follows, weightOf(MetricId::UniqueCount, "400", "800"));
    EXPECT_EQ(kWholeChange, weightOf(MetricId::Count, "0", "0"));

    DistributionChanges key;
    key.rowsBefore = 100;
    key.rowsAfter = 125;
    key.shareMoved = key.shareByGrowth = 0.2;
    EXPECT_EQ(follows, weightOfTexts(key, 100));
    key.shareMoved = 0.5;
    EXPECT_NEAR(15, weightOfTexts(key, 50).percent, 1e-9);
}

TEST(ChangeWeights, ACustomMetricWeighsItsRelativeChangeButEachUnitNoMoreThanARow) {
    EXPECT_EQ((ChangeWeight{0.5, false}), weightOfFigure(5, 10, 1000, 1000));
    EXPECT_EQ((ChangeWeight{20, false}), weightOfFigure(50'000, 40'000, 1000, 1000));
    EXPECT_EQ((ChangeWeight{0, true}), weightOfFigure(50'000, 55'000, 1000, 1200));
    EXPECT_EQ((ChangeWeight{50, false}), weightOfFigure(50'000, 120'000, 1000, 1200));
    EXPECT_EQ((ChangeWeight{100, false}), weightOfFigure(-50'000, 50'000, 1000, 1000));
    EXPECT_EQ((ChangeWeight{50, false}), weightOfFigure(5, 10, 0, 1000));
}

TEST(ChangeWeights, RelativeChangesAreBounded) {
    EXPECT_EQ(20, relativeChange(4, 5));
    EXPECT_EQ(20, relativeChange(5, 4));
    EXPECT_EQ(100, relativeChange(-1, 5));
    EXPECT_EQ(0, relativeChange(0, 0));
    EXPECT_EQ(5, weightOfShare(25, 20).percent);
    EXPECT_EQ(25, weightOfShare(25, std::nullopt).percent);
}

} // namespace
} // namespace tavix
