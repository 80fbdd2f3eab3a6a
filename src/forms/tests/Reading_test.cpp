#include "base/ByteMask.h"
#include "base/DateTicks.h"
#include "base/NumberText.h"
#include "forms/Reading.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tavix::forms {
namespace {

/// The value as the reading gives it: a number, a date, a boolean, or "-" if it does not fit.
std::string readAs(const std::string& reading, std::string_view value) {
    const auto parsed = Reading::parse(reading);
    if (!parsed)
        return "not a reading";
    std::string text = "-";
    if (const auto number = parsed->number(value))
        text = formatReal(*number);
    if (const auto ticks = parsed->ticks(value))
        text = formatDate(*ticks);
    if (const auto boolean = parsed->boolean(value))
        text = *boolean ? "true" : "false";
    EXPECT_EQ(parsed->fits(value), text != "-") << reading << ": " << value;
    return text;
}

struct Case {
    const char* value;
    const char* expected;
};

void expectReadings(const std::string& reading, const std::vector<Case>& cases) {
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(readAs(reading, value), expected) << reading << ": " << value;
}

/// The words that a column which decides nothing has for the value.
std::string formOf(std::string_view value) {
    return ValueForm::of(value, kindOf(value)).text(DecimalMark::Open, DateOrder::None);
}

TEST(Reading, TextsOfReadingsReadBack) {
    for (const char* text :
         {"integer", "real", "boolean", "date", "integer decimal-comma", "real decimal-comma unit=\xE2\x82\xAC",
          "real open-mark", "integer unit=%", "real unit=EUR", "date day-first", "date month-first",
          "date epoch-seconds", "integer unit=$"}) {
        const auto reading = Reading::parse(text);
        ASSERT_TRUE(reading.has_value()) << text;
        EXPECT_EQ(reading->text(), text);
    }
    for (const char* text :
         {"", " ", "text", "Integer", "integer ", " integer", "integer  unit=%", "integer unit=", "integer unit=ABC",
          "integer unit=kg", "integer day-first", "date unit=$", "date decimal-comma", "boolean unit=%",
          "real unit=% decimal-comma", "date day-first day-first", "date epoch-seconds day-first", "real real"})
        EXPECT_FALSE(Reading::parse(text).has_value()) << text;
}

TEST(Reading, IntegersAndRealsWithPoint) {
    expectReadings("integer", {{"5", "5"},
                               {" 5\t", "5"},
                               {"\xC2\xA0"
                                "5\xE3\x80\x80",
                                "5"},
                               {"+5", "5"},
                               {"-5", "-5"},
                               {"\xE2\x88\x92"
                                "5",
                                "-5"},
                               {"5-", "-5"},
                               {"(5)", "-5"},
                               {"1,234", "1234"},
                               {"1,234,567", "1234567"},
                               {"1 234 567", "1234567"},
                               {"1'234", "1234"},
                               {"1\xE2\x80\xAF"
                                "234",
                                "1234"},
                               {"007", "-"},
                               {"0,123", "-"},
                               {"1,23", "-"},
                               {"1234,567", "-"},
                               {"1,234 567", "-"},
                               {"1,,234", "-"},
                               {",123", "-"},
                               {"(-5)", "-"},
                               {"-5-", "-"},
                               {"--5", "-"},
                               {"1.5", "-"},
                               {"$5", "-"},
                               {"5%", "-"},
                               {"unknown", "-"},
                               {"", "-"},
                               {" ", "-"},
                               {"()", "-"},
                               {"-", "-"},
                               {"true", "-"}});
    expectReadings("real", {{"1.5", "1.5"},
                            {"1,234.5", "1234.5"},
                            {"-1'234.25", "-1234.25"},
                            {"5", "5"},
                            {"5.", "5"},
                            {".5", "0.5"},
                            {"1e3", "1000"},
                            {"1,234e3", "-"},
                            {"1.234,5", "-"},
                            {"1.2.3", "-"},
                            {"1e999", "-"},
                            {"12,345.", "-"}});
    const Reading integer = *Reading::parse("integer");
    EXPECT_EQ(integer.integer("-9,223,372,036,854,775,808"), INT64_MIN);
    EXPECT_FALSE(integer.integer("9,223,372,036,854,775,808").has_value()) << "beyond 64 bits";
    EXPECT_EQ(readAs("integer", "9,223,372,036,854,775,808"), "9.223372036854776e+18");
}

TEST(Reading, DecimalCommaAndOpenMark) {
    expectReadings("real decimal-comma", {{"1,5", "1.5"},
                                          {"1.234,5", "1234.5"},
                                          {"1.234", "1234"},
                                          {"1,234", "1.234"},
                                          {"0,123", "0.123"},
                                          {"1 234,5", "1234.5"},
                                          {"1,5e3", "1500"},
                                          {",5", "0.5"},
                                          {"5,", "-"},
                                          {"1.5", "-"},
                                          {"1,234.5", "-"},
                                          {"12", "12"}});
    expectReadings("integer decimal-comma", {{"1.234", "1234"}, {"1,5", "-"}});
    expectReadings("real open-mark",
                   {{"12", "12"}, {"1 234", "1234"}, {"1e3", "1000"}, {"1,234", "-"}, {"1.5", "-"}, {"1,5", "-"}});
}

TEST(Reading, Units) {
    expectReadings("real unit=$", {{"$1,234.50", "1234.5"},
                                   {"$ 5", "5"},
                                   {"-$5", "-5"},
                                   {"$-5", "-5"},
                                   {"($5)", "-5"},
                                   {"5 $", "5"},
                                   {"5$", "5"},
                                   {"$5-", "-5"},
                                   {"5", "5"},
                                   {"$", "-"},
                                   {"$$5", "-"},
                                   {"$5$", "-"},
                                   {"5 %", "-"},
                                   {"\xE2\x82\xAC"
                                    "5",
                                    "-"}});
    expectReadings("real decimal-comma unit=\xE2\x82\xAC", {{"1.234,50 \xE2\x82\xAC", "1234.5"},
                                                            {"1.234,50\xC2\xA0\xE2\x82\xAC", "1234.5"},
                                                            {"-5\xE2\x82\xAC", "-5"},
                                                            {"5 EUR", "-"}});
    expectReadings("integer unit=EUR",
                   {{"EUR 5", "5"}, {"EUR5", "5"}, {"5EUR", "5"}, {"5 EUR", "5"}, {"5 eur", "-"}, {"5 EURO", "-"}});
    expectReadings("integer unit=%",
                   {{"5%", "5"}, {"5 %", "5"}, {"-5 %", "-5"}, {"5", "-"}, {"%5", "-"}, {"5%%", "-"}});
}

TEST(Reading, DatesAsPeopleWriteThem) {
    const std::vector<Case> unambiguous = {{"2001-01-14", "2001-01-14"},
                                           {"2001-01-14T21:55:00+01:00", "2001-01-14 20:55:00"},
                                           {"2001/01/14 21:55", "2001-01-14 21:55:00"},
                                           {"2001/1/4", "2001-01-04"},
                                           {"2001.01.14", "2001-01-14"},
                                           {"2001-1-14", "2001-01-14"},
                                           {"Jan 14 2001", "2001-01-14"},
                                           {"Jan 14, 2001", "2001-01-14"},
                                           {"Jan. 14, 2001", "2001-01-14"},
                                           {"JANUARY 14,2001", "2001-01-14"},
                                           {"14 Jan 2001", "2001-01-14"},
                                           {"14-Jan-2001", "2001-01-14"},
                                           {"14/Jan/2001", "2001-01-14"},
                                           {"14JAN2001", "2001-01-14"},
                                           {"Sun, 14 Jan 2001", "2001-01-14"},
                                           {"Sunday, January 14, 2001", "2001-01-14"},
                                           {"Sun, 14 Jan 2001 21:55:03 GMT", "2001-01-14 21:55:03"},
                                           {"Sun, 14 Jan 2001 21:55:03 -0130", "2001-01-14 23:25:03"},
                                           {"4 Sept 2001", "2001-09-04"},
                                           {"Jan  1 2001 12:00AM", "2001-01-01"},
                                           {"Jan 1 2001, 12:30 pm", "2001-01-01 12:30:00"},
                                           {"2001/01/14T9:55:03.25", "2001-01-14 09:55:03.25"},
                                           {"2001/01/14 9:55 PM", "2001-01-14 21:55:00"},
                                           {" 14 Jan 2001 ", "2001-01-14"},
                                           {"29 Feb 2000", "2000-02-29"},
                                           {"05/05/2001", "2001-05-05"}};
    for (const char* reading : {"date", "date day-first", "date month-first"})
        expectReadings(reading, unambiguous);
    expectReadings("date", {{"14.01.2001", "-"}, {"01/02/2003", "-"}, {"1000000000", "-"}});
    expectReadings("date day-first", {{"14.01.2001", "2001-01-14"},
                                      {"14/1/2001 21:55", "2001-01-14 21:55:00"},
                                      {"01-02-2003", "2003-02-01"},
                                      {"01-14-2001", "-"}});
    expectReadings("date month-first",
                   {{"01-14-2001", "2001-01-14"}, {"01/02/2003", "2003-01-02"}, {"14.01.2001", "-"}});
    for (const char* value : {"2001-02-30",
                              "30.02.2001",
                              "29 Feb 2001",
                              "13/13/2001",
                              "2001/01-14",
                              "14.01",
                              "14.01.01",
                              "1/2/3",
                              "Jan 2001",
                              "Jan 14",
                              "14 Foo 2001",
                              "Janu 14 2001",
                              "2001/01/14 25:00",
                              "2001/01/14 21:60",
                              "2001/01/14 21",
                              "2001/01/14 13:00 PM",
                              "2001/01/14 9:55 PMs",
                              "2001/01/1421:55",
                              "20010114",
                              "12:30",
                              "14.01.20011",
                              "2001/01/14 21:55:",
                              "2001/01/14 21:55:03.",
                              "2001/001/14",
                              "0/1/2001",
                              "2001/01/14,",
                              "Sunday",
                              "May"})
        expectReadings("date day-first", {{value, "-"}});
}

TEST(Reading, EveryDayIsTheIsoOne) {
    const Reading reading = *Reading::parse("date");
    for (std::int64_t day = -719'162; day<2'932'897; day += day> - 1000 && day < 40'000 ? 1 : 13) {
        const std::string iso = formatDate(day * kTicksPerDay);
        std::string written = iso;
        written[4] = written[7] = '/';
        ASSERT_EQ(reading.ticks(written), parseDate(iso)) << written;
    }
    for (const char* value : {"1900/02/29", "2001/02/29", "2001/04/31", "2001/00/10", "2001/13/10", "0000/01/01"})
        EXPECT_FALSE(reading.fits(value)) << value;
    EXPECT_TRUE(reading.fits("2000/02/29"));
}

TEST(Reading, EpochSecondsAndBooleans) {
    expectReadings("date epoch-seconds", {{"0", "1970-01-01"},
                                          {"1000000000", "2001-09-09 01:46:40"},
                                          {"-1", "1969-12-31 23:59:59"},
                                          {"253402300799", "9999-12-31 23:59:59"},
                                          {"253402300800", "-"},
                                          {"9223372036854775807", "-"},
                                          {"99999999999999999999", "-"},
                                          {"1.5", "-"},
                                          {"2001-01-14", "-"}});
    expectReadings("boolean", {{"TRUE", "true"}, {" false ", "false"}, {"yes", "-"}, {"1", "-"}});
}

TEST(Reading, FormsHaveWords) {
    const std::vector<Case> cases = {{"5", "integer"},
                                     {"1.5", "real"},
                                     {"2001-01-14T10:00", "date"},
                                     {"True", "boolean"},
                                     {" 5", "integer with blanks"},
                                     {"1,234,567", "integer grouped"},
                                     {"1.234.567", "integer grouped decimal-comma"},
                                     {"1,234", "number grouped or decimal"},
                                     {"1,5", "real decimal-comma"},
                                     {"$1,234.50", "real grouped with $"},
                                     {"5 %", "integer with %"},
                                     {"5 EUR", "integer with EUR"},
                                     {"(5)", "integer in parentheses"},
                                     {"5-", "integer trailing minus"},
                                     {"2001/01/14 21:55", "date YYYY/MM/DD hh:mm"},
                                     {"Jun 12 1998", "date Mon DD YYYY"},
                                     {"14Jan2001", "date DDMonYYYY"},
                                     {"14-Jan-2001 ", "date DD-Mon-YYYY with blanks"},
                                     {"14.01.2001", "date DD.MM.YYYY"},
                                     {"01/14/2001", "date MM/DD/YYYY"},
                                     {"01/02/2003", "date DD/MM/YYYY or MM/DD/YYYY"},
                                     {"14.01.01", "date with two-digit year"},
                                     {"99-12-31", "date with two-digit year"},
                                     {"12-Jun-98", "date with two-digit year"},
                                     {"007", "digits with leading zeros"},
                                     {"1.2.3", "text"},
                                     {"12 Main St", "text"},
                                     {"May", "text"},
                                     {"$", "text"}};
    for (const auto& [value, expected] : cases)
        EXPECT_EQ(formOf(value), expected) << value;
}

/// Form and reading share no decision but must agree, whatever the text.
TEST(Reading, AgreesWithFormsOnGarbage) {
    const std::vector<std::string> pieces = {"1",
                                             "2",
                                             "12",
                                             "345",
                                             "0",
                                             ".",
                                             ",",
                                             " ",
                                             "-",
                                             "/",
                                             "'",
                                             "(",
                                             ")",
                                             "%",
                                             "$",
                                             "EUR",
                                             "e",
                                             "Jan",
                                             "PM",
                                             ":",
                                             "T",
                                             "Sun",
                                             "+",
                                             "\t",
                                             "2001",
                                             "30",
                                             "000",
                                             "true",
                                             "x",
                                             "\xC2\xA0",
                                             "\xE2\x82\xAC",
                                             "\xFF",
                                             "\xE2\x88\x92",
                                             "\xE2"};
    std::vector<Reading> readings;
    for (const char* text : {"integer", "real", "real decimal-comma", "real open-mark", "integer unit=$", "real unit=%",
                             "real decimal-comma unit=EUR", "date", "date day-first", "date month-first", "boolean"})
        readings.push_back(*Reading::parse(text));
    std::mt19937 random(3);
    int fitting = 0;
    for (int i = 0; i < 200'000; ++i) {
        std::string text;
        for (std::size_t n = random() % 7 + 1; n > 0; --n)
            text += pieces[random() % pieces.size()];
        const ValueKind kind = kindOf(text);
        if (kind == ValueKind::None)
            continue;
        ASSERT_EQ(kindOf(text, byteMask(text)), kind) << text;
        const ValueForm form = ValueForm::of(text, kind);
        for (const Reading& reading : readings) {
            ASSERT_EQ(reading.fits(form), reading.fits(text)) << reading.text() << ": " << text;
            fitting += reading.fits(text) ? 1 : 0;
        }
    }
    EXPECT_GT(fitting, 10'000);
}

} // namespace
} // namespace tavix::forms
