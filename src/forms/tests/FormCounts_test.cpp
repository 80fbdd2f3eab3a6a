#include "forms/FormCounts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tavix::forms {
namespace {

using Values = std::vector<std::pair<std::string, std::uint64_t>>;

/// "reading: fitting values/rows of values/rows (ambiguity)".
std::string textOf(const ColumnReading& column) {
    std::string text = column.reading ? column.reading->text() : "text";
    text += ": " + std::to_string(column.fitValues) + "/" + std::to_string(column.fitRows) + " of " +
            std::to_string(column.values) + "/" + std::to_string(column.rows);
    return column.ambiguity.empty() ? text : text + " (" + column.ambiguity + ")";
}

std::string formsOf(const ColumnReading& column) {
    std::string text;
    for (const FormCount& form : column.forms)
        text += (text.empty() ? "" : "; ") + form.form + " " + std::to_string(form.values) + "/" +
                std::to_string(form.rows) + " " + form.example;
    return text;
}

ColumnReading read(const Values& values, StatedDates stated = StatedDates::Nothing) {
    FormCounts counts(stated);
    for (const auto& [text, count] : values)
        counts.take(text, kindOf(text), byteMask(text), count);
    return counts.read();
}

TEST(FormCounts, AFewTextsAmongNumbersOrDates) {
    const ColumnReading integers = read({{"5", 300}, {"7", 99}, {"unknown", 1}});
    EXPECT_EQ(textOf(integers), "integer: 2/399 of 3/400");
    EXPECT_EQ(formsOf(integers), "integer 2/399 5; text 1/1 unknown");
    EXPECT_TRUE(integers.isRead(99.75));
    EXPECT_FALSE(integers.isRead(99.76));
    EXPECT_EQ(textOf(read({{"5", 3}, {"1.5", 3}, {"n/a", 1}})), "real: 2/6 of 3/7");
    EXPECT_EQ(textOf(read({{"5", 1}, {"a", 1}})), "integer: 1/1 of 2/2") << "half of the rows";
    EXPECT_EQ(textOf(read({{"5", 1}, {"a", 2}})), "text: 0/0 of 2/3");
    EXPECT_EQ(textOf(read({{"5", 5}, {"2001-01-14", 6}, {"x", 1}})), "date: 1/6 of 3/12");
    EXPECT_EQ(textOf(read({{"5", 5}, {"2001-01-14", 5}})), "integer: 1/5 of 2/10") << "numbers first among equals";
    EXPECT_EQ(textOf(read({{"true", 5}, {" FALSE", 5}, {"yes", 1}})), "boolean: 2/10 of 3/11");
    EXPECT_EQ(textOf(read({{"007", 5}, {"008", 5}})), "text: 0/0 of 2/10");
    EXPECT_EQ(textOf(read({{"10001", 98}, {"00501", 2}})), "text: 0/0 of 2/100") << "codes of five digits";
    EXPECT_EQ(textOf(read({{"10001", 97}, {"17", 1}, {"00501", 2}})), "integer: 2/98 of 3/100") << "17 is not padded";
    EXPECT_EQ(textOf(read({})), "text: 0/0 of 0/0");
    EXPECT_FALSE(read({}).isRead(50));
}

TEST(FormCounts, TheColumnDecidesTheDecimalMark) {
    EXPECT_EQ(textOf(read({{"1,234", 5}, {"7", 90}})),
              "integer open-mark: 1/90 of 2/95 (decimal point or decimal comma)")
        << "7 tells nothing";
    EXPECT_EQ(textOf(read({{"1,234", 5}, {"1,234,567", 1}})), "integer: 2/6 of 2/6");
    EXPECT_EQ(textOf(read({{"1,234", 5}, {"1,23", 1}})), "real decimal-comma: 2/6 of 2/6");
    EXPECT_EQ(textOf(read({{"1.500", 5}, {"2.250", 1}})), "real: 2/6 of 2/6") << "strict types need no decision";
    EXPECT_EQ(textOf(read({{"1.500", 5}, {"2.250,5", 1}})), "real decimal-comma: 2/6 of 2/6");
    EXPECT_EQ(textOf(read({{"1.5", 19}, {"1,5", 1}})), "real: 1/19 of 2/20") << "one mistake in twenty";
    EXPECT_EQ(textOf(read({{"1.5", 18}, {"1,5", 1}})),
              "integer open-mark: 0/0 of 2/19 (decimal point or decimal comma)");
    EXPECT_EQ(formsOf(read({{"1.500", 5}, {"2.250,5", 1}, {"3", 1}})),
              "integer grouped decimal-comma 1/5 1.500; integer 1/1 3; real grouped decimal-comma 1/1 2.250,5");
}

TEST(FormCounts, TheColumnDecidesTheUnit) {
    EXPECT_EQ(textOf(read({{"$5", 5}, {"7", 90}, {"$1,200.50", 1}})), "real unit=$: 3/96 of 3/96");
    EXPECT_EQ(textOf(read({{"5 EUR", 5}, {"5 USD", 4}})), "integer unit=EUR: 1/5 of 2/9");
    EXPECT_EQ(textOf(read({{"5 EUR", 4}, {"5 USD", 4}, {"7", 92}})), "integer: 1/92 of 3/100 (unit EUR or USD)");
    EXPECT_EQ(textOf(read({{"5%", 9}, {"7", 1}})), "integer unit=%: 1/9 of 2/10");
    EXPECT_EQ(textOf(read({{"5%", 1}, {"7", 9}})), "integer: 1/9 of 2/10");
    EXPECT_EQ(textOf(read({{"5%", 5}, {"7", 5}})), "integer: 1/5 of 2/10 (with or without %)");
    EXPECT_EQ(textOf(read({{"5 EUR", 3}, {"5 USD", 2}, {"5 GBP", 2}, {"5 CHF", 2}})), "text: 0/0 of 4/9")
        << "fewer than half have one unit";
}

TEST(FormCounts, TheColumnDecidesTheOrderOfDates) {
    EXPECT_EQ(textOf(read({{"01/02/2003", 5}})), "date: 0/0 of 1/5 (day-first or month-first)");
    EXPECT_EQ(formsOf(read({{"01/02/2003", 5}})), "date DD/MM/YYYY or MM/DD/YYYY 1/5 01/02/2003");
    EXPECT_EQ(textOf(read({{"01/02/2003", 5}, {"14/01/2001", 1}})), "date day-first: 2/6 of 2/6");
    EXPECT_EQ(formsOf(read({{"01/02/2003", 5}, {"14/01/2001", 1}})), "date DD/MM/YYYY 2/6 01/02/2003");
    EXPECT_EQ(textOf(read({{"01/02/2003", 5}, {"01/14/2001 9:55 PM", 1}})), "date month-first: 2/6 of 2/6");
    EXPECT_EQ(textOf(read({{"01/13/2001", 19}, {"14/01/2001", 1}})), "date month-first: 1/19 of 2/20");
    EXPECT_EQ(textOf(read({{"01/13/2001", 18}, {"14/01/2001", 1}, {"2001-01-14", 400}})),
              "date: 1/400 of 3/419 (day-first or month-first)");
    EXPECT_EQ(textOf(read({{"05/05/2001", 1}, {"Jan 14 2001", 1}})), "date: 2/2 of 2/2") << "no order needed";
    EXPECT_EQ(textOf(read({{"01/02/2003", 5}, {"01/14/2001", 1}}, StatedDates::DayFirst)),
              "date day-first: 1/5 of 2/6");
    EXPECT_EQ(textOf(read({{"01/02/2003", 5}}, StatedDates::MonthFirst)), "date month-first: 1/5 of 1/5");
    EXPECT_EQ(textOf(read({{"Jan 14 2001", 5}}, StatedDates::MonthFirst)), "date: 1/5 of 1/5");
    EXPECT_EQ(textOf(read({{"14.01.01", 5}})), "text: 0/0 of 1/5");
    EXPECT_EQ(formsOf(read({{"14.01.01", 5}})), "date with two-digit year 1/5 14.01.01");
}

TEST(FormCounts, EpochSecondsOnlyIfStated) {
    const Values values = {{"1000000000", 5}, {" 0", 1}, {"999999999999999", 2}, {"1.5", 1}};
    EXPECT_EQ(textOf(read(values)), "real: 4/9 of 4/9");
    EXPECT_EQ(textOf(read(values, StatedDates::EpochSeconds)), "date epoch-seconds: 2/6 of 4/9");
}

TEST(FormCounts, LargeIntegers) {
    EXPECT_TRUE(read({{"9,223,372,036,854,775,807", 1}, {"x", 1}}).fits64);
    EXPECT_FALSE(read({{"9,223,372,036,854,775,808", 1}, {"x", 1}}).fits64);
    EXPECT_FALSE(read({{"9223372036854775808", 1}, {"x", 1}}).fits64);
    EXPECT_TRUE(read({{"$5", 2}, {"9223372036854775808 EUR", 1}}).fits64) << "it does not fit";
}

/// The forms add up, and their sum is independent of order and parts.
TEST(FormCounts, OrderAndPartsDoNotMatter) {
    const std::vector<std::string> pool = {"5",           "007",   "12345",    "7",    "1.5",        "1.234",
                                           "1,234",       "$5",    "unknown",  "n/a",  "2001-01-14", "01/02/2003",
                                           "14.01.2001",  "true",  "14.01.01", " 5",   "5 %",        "Jan 1 2001",
                                           "1,234,567.5", "1 234", "1e5",      "-(5)", "(5)",        "5 EUR"};
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        Values values;
        for (const std::string& text : pool)
            if (random() % 3 == 0)
                values.emplace_back(text, random() % 4 == 0 ? random() % 1000 + 1 : random() % 3 + 1);
        const ColumnReading whole = read(values);
        std::shuffle(values.begin(), values.end(), random);
        FormCounts first;
        FormCounts second;
        std::uint64_t fitRows = 0;
        for (const auto& [text, count] : values) {
            (random() % 2 == 0 ? first : second).take(text, kindOf(text), byteMask(text), count);
            fitRows += whole.reading && whole.reading->fits(text) ? count : 0;
        }
        first.merge(second);
        EXPECT_EQ(textOf(first.read()), textOf(whole));
        EXPECT_EQ(formsOf(first.read()), formsOf(whole));
        EXPECT_EQ(fitRows, whole.fitRows) << textOf(whole);
        std::uint64_t rows = 0;
        for (const FormCount& form : whole.forms)
            rows += form.rows;
        EXPECT_EQ(rows, whole.rows);
    }
}

} // namespace
} // namespace tavix::forms
