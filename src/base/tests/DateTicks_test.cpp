#include "base/DateTicks.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <string>

namespace tavix {
namespace {

void expectThatItIsReadAsWritten(std::chrono::sys_days day) {
    const std::int64_t noon = day.time_since_epoch().count() * kTicksPerDay + kTicksPerDay / 2;
    EXPECT_EQ(parseDate(formatDate(noon)), noon) << formatDate(noon);
}

TEST(DateTicks, DaysAreReadAsTheyAreWritten) {
    using namespace std::chrono;
    // The calendar repeats itself in 400 years.
    for (sys_days day = year{1700} / January / 1; day < sys_days{year{2100} / January / 1}; day += days{1})
        expectThatItIsReadAsWritten(day);
    for (int number = 1; number <= 9999; ++number)
        for (const sys_days day : {year{number} / January / 1, year{number} / March / 1, year{number} / December / 31})
            expectThatItIsReadAsWritten(day);
}

TEST(DateTicks, ReadsNothingElse) {
    for (const char* text : {"2001-02-29",           "1900-02-29",
                             "2001-13-01",           "2001-00-10",
                             "2001-04-31",           "2001-01-00",
                             "0000-01-01",           "2001-1-014",
                             "2001/01/14",           "20010114",
                             "-001-01-14",           "2001-01-1",
                             "2001-01-14 ",          "2001-01-14x",
                             "2001-01-14T",          "2001-01-14 24:00:00",
                             "2001-01-14 21:60:00",  "2001-01-14 21:00:60",
                             "2001-01-14 2:00:000",  "2001-01-14  1:00:00",
                             "2001-01-14 -1:00:00",  "2001-01-14 21:00:0x",
                             "2001-01-14 21-00-00",  "2001-01-14 21:00+0",
                             "2001-01-14 21:00:00 ", "2001-01-14 21:00:00."})
        EXPECT_FALSE(parseDate(text)) << text;
    const auto noon = parseDate("2000-02-29 12:00");
    ASSERT_TRUE(noon);
    EXPECT_EQ(formatDate(*noon), "2000-02-29 12:00:00");
    for (const char* text : {"2000-02-29T12:00:00", "2000-02-29 12:00:00,0", "2000-02-29T12:00Z",
                             "2000-02-29 13:30:00+0130", "2000-02-29 11:00:00.0-01"})
        EXPECT_EQ(parseDate(text), noon) << text;
}

} // namespace
} // namespace tavix
