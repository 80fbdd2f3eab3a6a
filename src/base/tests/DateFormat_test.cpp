#include "base/DateFormat.h"
#include "base/DateTicks.h"

#include <gtest/gtest.h>

#include <string>

namespace tavix {
namespace {

/// The date as ISO text; "none" for a text that is not one, or the error of the format.
std::string read(std::string_view format, std::string_view text) {
    const Result<DateFormat> parsed = DateFormat::parse(format);
    if (!parsed)
        return parsed.error().text;
    const auto ticks = parsed->read(text);
    return ticks ? formatDate(*ticks) : "none";
}

TEST(DateFormat, ReadsTheDatesOfItsFormatAndNoOthers) {
    struct Case {
        const char* form;
        const char* text;
        const char* date;
    };
    const Case cases[] = {
        {"dd.MM.yyyy", "14.01.2001", "2001-01-14"},
        {"dd.MM.yyyy", "4.1.2001", "none"},
        {"d.M.yyyy", "4.1.2001", "2001-01-04"},
        {"d.M.yyyy", "014.1.2001", "none"},
        {"MM/dd/yyyy", "02/29/2023", "none"},
        {"MM/dd/yyyy", "02/29/2024", "2024-02-29"},
        {"MM/dd/yyyy", "13/01/2024", "none"},
        {"dd.MM.yyyy", "14.01.2001 ", "none"},
        {"dd.MM.yyyy", "14.01.200", "none"},
        {"dd.MM.yyyy", "14.01.0000", "none"},
        {"yyyyMMdd", "20240229", "2024-02-29"},
        {"d-MMM-yy", "1-jun-68", "2068-06-01"},
        {"d-MMM-yy", "1-June-69", "1969-06-01"},
        {"MMM d yyyy", "May 3 1998", "1998-05-03"},
        {"MMM d yyyy", "Mai 3 1998", "none"},
        {"MMM d yyyy", "Sept 3 1998", "none"},
        {"yyyy/MM/dd HH:mm", "2001/01/14 21:55", "2001-01-14 21:55:00"},
        {"yyyy/MM/dd HH:mm", "2001/01/14 24:00", "none"},
        {"M/d/yyyy h:mm:ss a", "1/14/2001 12:00:05 AM", "2001-01-14 00:00:05"},
        {"M/d/yyyy h:mm:ss a", "1/14/2001 9:55:00 pm", "2001-01-14 21:55:00"},
        {"M/d/yyyy h:mm:ss a", "1/14/2001 13:00:00 PM", "none"},
        {"'on the 'd'. 'MMM''yy", "on the 3. May'98", "1998-05-03"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(read(one.form, one.text), one.date) << one.form << " " << one.text;
}

TEST(DateFormat, FormatsThatSayTooLittleOrTooMuchAreErrors) {
    EXPECT_EQ(read("dd.MM", ""), "a date format has the year, the month and the day once each, as in dd.MM.yyyy");
    EXPECT_EQ(read("dd.MM.yyyy dd", ""),
              "a date format has the year, the month and the day once each, as in dd.MM.yyyy");
    EXPECT_EQ(read("dd.MM.yyyy hh", ""),
              "a date format has each part of the time at most once, and hh together with a");
    EXPECT_EQ(read("dd.MM.yyyy mm mm", ""),
              "a date format has each part of the time at most once, and hh together with a");
    EXPECT_EQ(read("DD.MM.yyyy", ""), "\"DD\" has no meaning in a date format; put literal letters in single quotes");
    EXPECT_EQ(read("dd.MM.yyyy 'at", ""), "a quote in the date format is not closed");
    EXPECT_EQ(read(std::string(101, '.'), ""), "a date format has at most 100 bytes");
}

} // namespace
} // namespace tavix
