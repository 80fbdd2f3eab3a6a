#include "base/Metrics.h"
#include "tabs/MetricText.h"

#include <gtest/gtest.h>

#include <string>

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
