#include "filter/ValueLines.h"

#include <gtest/gtest.h>

namespace tavix {
namespace {

TEST(ValueLines, LeaveOutEmptyLines) {
    const std::vector<std::string> values = {"a", " b ", "c\xC2\xA0"};
    EXPECT_EQ(ValuesOfLines("a\n\n b \nc\xC2\xA0\n\n"), values);
    EXPECT_EQ(ValuesOfLines("a\n b \nc\xC2\xA0"), values);
    EXPECT_TRUE(ValuesOfLines("").empty());
    EXPECT_TRUE(ValuesOfLines("\n\n").empty());
}

TEST(ValueLines, NameTheFirstValuesInOneLine) {
    EXPECT_EQ(ValueListSummary({}), "No values yet");
    EXPECT_EQ(ValueListSummary({"a"}), "1 value: a");
    EXPECT_EQ(ValueListSummary({"a", "b", "c", "d"}), "4 values: a, b, c, d");
    EXPECT_EQ(ValueListSummary({"a", "b", "c", "d", "e"}), "5 values: a, b, c, d, …");
    EXPECT_EQ(ValueListSummary({std::string(24, 'x'), std::string(25, 'y')}),
              "2 values: " + std::string(24, 'x') + ", " + std::string(24, 'y') + "…");
    EXPECT_EQ(ValueListSummary({"two\nlines"}), "1 value: two lines");
}

} // namespace
} // namespace tavix
