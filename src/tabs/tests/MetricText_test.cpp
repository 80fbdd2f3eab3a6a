#include "base/Metrics.h"
#include "tabs/MetricText.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

namespace tavix {
namespace {

TEST(MetricText, LongMeansLosePlacesUntilTheyAreShort) {
    constexpr int kMean = static_cast<int>(MetricId::Mean);
    EXPECT_EQ("12.346", metricText(kMean, "R", "12.3456789"));
    EXPECT_EQ("1.5", metricText(kMean, "R", "1.5"));
    EXPECT_EQ("1.2345", metricText(kMean, "R", "1.2345"));
    EXPECT_EQ("1.2346", metricText(kMean, "I", "1.23456"));
    EXPECT_EQ("-98.62", metricText(kMean, "R", "-98.6212045"));
    // Too long even without decimal places.
    EXPECT_EQ("12345678", metricText(kMean, "I", "12345678.25"));
    EXPECT_EQ("100000", metricText(kMean, "I", "99999.999999"));
    EXPECT_EQ("0.0000", metricText(kMean, "R", "0.0000000123"));
}

TEST(MetricText, OnlyMeanAndDeviationsOfNumbersAreRounded) {
    const std::string value = "12.3456789";
    for (int id = 0; id < static_cast<int>(kMetricCount); ++id) {
        const bool rounded = id == 10 || id == 13 || id == 14;
        EXPECT_EQ(rounded ? "12.346" : value, metricText(id, "R", value)) << id;
        EXPECT_EQ(rounded ? "12.346" : value, metricText(id, "I", value)) << id;
        EXPECT_EQ(value, metricText(id, "S", value)) << id;
        EXPECT_EQ(value, metricText(id, "", value)) << id;
    }
    EXPECT_EQ("12.34567x", metricText(10, "R", "12.34567x"));
}

/// What is painted, "=" and the full text where it is another one, and the bar.
std::string cellOf(MetricId metric, std::string_view type, const KvbString& value) {
    const GridCell cell = metricCell(static_cast<int>(metric), type, value);
    std::string text = shownText(cell);
    if (text != cell.text)
        text += "=" + cell.text;
    if (cell.state == CellState::Unknown)
        text += "?";
    if (cell.bar >= 0)
        text += "[" + std::to_string(cell.bar).substr(0, 6) + "]";
    return text;
}

TEST(MetricText, TheEyeGetsGroupsRoundedSharesAndTheirSign) {
    EXPECT_EQ("1,234,567=1234567", cellOf(MetricId::Count, "S", "1234567"));
    EXPECT_EQ("999", cellOf(MetricId::NullCount, "I", "999"));
    EXPECT_EQ("0.36 %=0.35545023696682465[0.0035]", cellOf(MetricId::PercentNull, "S", "0.35545023696682465"));
    EXPECT_EQ("0.00 %=0[0.0000]", cellOf(MetricId::PercentNull, "S", "0"));
    EXPECT_EQ("< 0.01 %=0.0004[0.0000]", cellOf(MetricId::PercentNull, "S", "0.0004"));
    EXPECT_EQ("> 99.99 %=99.9999[0.9999]", cellOf(MetricId::UniquePercent, "S", "99.9999"));
    EXPECT_EQ("100.00 %=100[1.0000]", cellOf(MetricId::UniquePercent, "S", "100"));
    EXPECT_EQ("12.346=12.3456789", cellOf(MetricId::Mean, "R", "12.3456789"));
    EXPECT_EQ("(Unknown)?", cellOf(MetricId::Mean, "R", {}));
}

TEST(MetricText, ValuesOfTheDataAndWordsArePaintedAsTheyAre) {
    EXPECT_EQ("20190101", cellOf(MetricId::MinimumValue, "I", "20190101"));
    EXPECT_EQ("12.3456789012345", cellOf(MetricId::Median, "R", "12.3456789012345"));
    EXPECT_EQ("99501", cellOf(MetricId::Mode, "I", "99501"));
    EXPECT_EQ("Integer", cellOf(MetricId::ActualType, "I", "Integer"));
    EXPECT_EQ("12.3456789", cellOf(MetricId::Mean, "S", "12.3456789"));
    EXPECT_EQ("many", cellOf(MetricId::Count, "I", "many"));
    EXPECT_EQ("much", cellOf(MetricId::PercentNull, "I", "much"));
}

TEST(MetricText, Alignment) {
    std::string left;
    for (int id = 0; id < static_cast<int>(kMetricCount); ++id) {
        if (metricAlignment(id) == CellAlignment::Left)
            left += std::to_string(id) + " ";
    }
    EXPECT_EQ("6 7 12 15 16 18 19 21 ", left);
}

} // namespace
} // namespace tavix
