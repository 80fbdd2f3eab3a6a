#include "base/KvbDatavar.h"
#include "base/NumberText.h"

#include <gtest/gtest.h>

#include <clocale>
#include <limits>
#include <utility>

namespace tavix {
namespace {

TEST(NumberText, GroupsOfThreeDigits) {
    EXPECT_EQ(formatGrouped(0), "0");
    EXPECT_EQ(formatGrouped(999), "999");
    EXPECT_EQ(formatGrouped(1000), "1,000");
    EXPECT_EQ(formatGrouped(12345), "12,345");
    EXPECT_EQ(formatGrouped(999'999), "999,999");
    EXPECT_EQ(formatGrouped(1'000'000), "1,000,000");
    EXPECT_EQ(formatGrouped(-1), "-1");
    EXPECT_EQ(formatGrouped(-999), "-999") << "no comma after the sign";
    EXPECT_EQ(formatGrouped(-1000), "-1,000");
    EXPECT_EQ(formatGrouped(-123'456), "-123,456");
    EXPECT_EQ(formatGrouped(std::numeric_limits<std::int64_t>::max()), "9,223,372,036,854,775,807");
    EXPECT_EQ(formatGrouped(std::numeric_limits<std::int64_t>::min()), "-9,223,372,036,854,775,808");
}

TEST(NumberText, RealsReadBackEqualAndIgnoreTheProcessLocale) {
    const char* before = std::setlocale(LC_NUMERIC, nullptr);
    const std::string saved = before ? before : "C";
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");
    EXPECT_EQ(formatReal(0.1), "0.1");
    EXPECT_EQ(formatReal(-0.0), "0");
    EXPECT_EQ(formatReal(1e20), "1e+20");
    EXPECT_EQ(formatReal(100000.0), "100000");
    EXPECT_EQ(formatReal(-123456789012345.0), "-123456789012345");
    EXPECT_EQ(formatReal(0.0000123), "0.0000123");
    EXPECT_EQ(formatReal(1.0 / 3.0), "0.3333333333333333");
    EXPECT_EQ(parseNumber(formatReal(0.1 + 0.2)), 0.1 + 0.2);
    EXPECT_EQ(formatFixed(2.345, 2), "2.35");
    EXPECT_EQ(formatFixed(-0.001, 2), "0.00");
    std::setlocale(LC_NUMERIC, saved.c_str());
}

TEST(NumberText, ReadableFiguresHaveWhatPeopleWrite) {
    const std::pair<double, const char*> cases[] = {
        {-0.09999999999999964, "-0.1"},
        {66.48793565683646, "66.487936"},
        {100.0, "100"},
        {0.0, "0"},
        {1.0 / 3, "0.333333"},
        {0.0001234567, "0.000123457"},
        {1e-7 / 3, "3.33333e-08"},
        {123456789012.25, "123456789012.25"},
        {-2.5, "-2.5"},
        {0.9999999, "1"},
        {1e20, "1e+20"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(formatReadable(value), text);
}

TEST(NumberText, OnlyWholeFiniteNumbersAreNumbers) {
    for (const char* text : {"1", "-1.5", "+2", ".5", "1e3", "007"})
        EXPECT_TRUE(parseNumber(text)) << text;
    for (const char* text : {"", " 1", "1 ", "1,5", "nan", "inf", "-inf", "0x10", "+-1", "1e999", "-", "."})
        EXPECT_FALSE(parseNumber(text)) << text;
}

TEST(NumberText, SettingsConversionTakesThePrefixAndSaturates) {
    EXPECT_EQ(decimalPrefix("45"), 45);
    EXPECT_EQ(decimalPrefix("  12abc"), 12);
    EXPECT_EQ(decimalPrefix("-7"), -7);
    EXPECT_EQ(decimalPrefix("+7"), 7);
    EXPECT_EQ(decimalPrefix("abc"), 0);
    EXPECT_EQ(decimalPrefix(""), 0);
    EXPECT_EQ(decimalPrefix("99999999999999999999"), std::numeric_limits<std::int64_t>::max());
}

TEST(KvbDatavar, ConvertsOnRead) {
    EXPECT_TRUE(KvbDatavar().isNull());
    EXPECT_TRUE(KvbDatavar().toText().isNull());
    EXPECT_EQ(KvbDatavar("12").toInt(), 12);
    EXPECT_EQ(KvbDatavar("12.75").toInt(), 12);
    EXPECT_EQ(KvbDatavar("abc").toInt(), 0);
    EXPECT_EQ(KvbDatavar(2.5).toText(), KvbString("2.5"));
    EXPECT_EQ(KvbDatavar(std::int64_t{5'000'000'000}).toInt(), std::numeric_limits<int>::max());
    EXPECT_EQ(KvbDatavar("5000000000").toInt64(), 5'000'000'000);
    EXPECT_EQ(KvbDatavar(KvbString()).toDouble(), 0.0);
}

} // namespace
} // namespace tavix
