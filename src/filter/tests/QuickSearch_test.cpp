#include "access/FilterCode.h"
#include "base/tests/ScriptedMessages.h"
#include "filter/FilterModel.h"
#include "filter/FilterSummary.h"
#include "filter/QuickMatcher.h"
#include "filter/QuickSearch.h"

#include <gtest/gtest.h>

#include <random>

namespace tavix {
namespace {

constexpr DistributionKind kValues = DistributionKind::Frequency;
constexpr DistributionKind kPatterns = DistributionKind::Pattern;

/// The filter in words, or "error: ...".
std::string inWords(std::string_view typed, DistributionKind kind = kValues) {
    const Result<std::string> filter = QuickFilter(typed, kind);
    return filter ? FilterSummary(*filter) : "error: " + filter.error().text;
}

/// The values that pass, each followed by a blank.
std::string passing(std::string_view typed) {
    const KvbString values[] = {"9", "10",         "10.0", "-2",  "abc",  "ABC",  "a.c",      "null",
                                "",  "2026-01-31", "it's", "x\\", "a\"b", "a\nb", KvbString()};
    const auto term = ParseQuickSearch(typed);
    EXPECT_TRUE(term && *term) << typed;
    auto matcher = QuickMatcher::make(**term);
    if (!matcher)
        return matcher.error().text;
    std::string text;
    for (const KvbString& value : values) {
        if ((*matcher)->isNamed(value.view(), value.isNull()) != (*matcher)->isNegated())
            text += value.isNull() ? "(null) " : (value.isEmpty() ? "(empty)" : value.str()) + " ";
    }
    return text;
}

TEST(QuickSearch, BecomesConditionsThatTheDialogShows) {
    EXPECT_EQ("Value contains \"Lyon\" (case insensitive)", inWords("  Lyon "));
    EXPECT_EQ("Value contains \"Aaa\"", inWords("Aaa", kPatterns)) << "case is what a pattern says";
    EXPECT_EQ("Value equal to \"10\"", inWords("=10"));
    EXPECT_EQ("Value equal to \"a b\"", inWords("== a b"));
    EXPECT_EQ("Value not equal to \"x\" OR Value is null", inWords("<>x"));
    EXPECT_EQ("Value not equal to \"x\"", inWords("!= x", kPatterns)) << "a null has no pattern";
    EXPECT_EQ("Value is null", inWords("NULL"));
    EXPECT_EQ("Value is not null", inWords("!null"));
    EXPECT_EQ("Value is not null", inWords("not null"));
    EXPECT_EQ("Value equal to \"\"", inWords("empty"));
    EXPECT_EQ("Value not equal to \"\" OR Value is null", inWords("not empty"));
    EXPECT_EQ("Value greater than \"m\"", inWords(">m"));
    EXPECT_EQ("Value greater than \"10\"", inWords(">\"10\"")) << "as texts";
    EXPECT_EQ("Value greater than or equal to \"a\" AND Value less than or equal to \"m\"", inWords("a..m"));
    EXPECT_EQ("Value contains \"null\" (case insensitive)", inWords("'null'"));
    EXPECT_EQ("Value contains \"to be continued...\" (case insensitive)", inWords("to be continued..."));
    EXPECT_EQ("Value contains \"a ~ b\" (case insensitive)", inWords("a ~ b"));
    EXPECT_EQ("", inWords(" \t "));
    EXPECT_EQ("", inWords("\"\"")) << "every value contains nothing";
}

TEST(QuickSearch, ComparesNumbersAndDatesAsSuchAndSearchesExpressions) {
    EXPECT_EQ("tonumber(`Value`) > 9.5", inWords("> 9.5"));
    EXPECT_EQ("tonumber(`Value`) >= -2 and tonumber(`Value`) <= 10", inWords("-2~10"));
    EXPECT_EQ("tonumber(`Value`) >= 1.5 and tonumber(`Value`) <= 2.5", inWords("1.5..2.5"));
    EXPECT_EQ("todate(`Value`) <= '2026-11-21'", inWords("<=2026-11-21"));
    EXPECT_EQ("todate(`Value`) >= '2026-01-01' and todate(`Value`) <= '2026-12-31'", inWords("2026-01-01..2026-12-31"));
    EXPECT_EQ("matches(`Value`, '(?s:.*)(?:^a.c$)(?s:.*)')", inWords("~^a.c$"));
    EXPECT_EQ(inWords("~\\d+"), inWords("/\\d+/"));

    EXPECT_EQ("10 10.0 ", passing(">9"));
    EXPECT_EQ("9 10 10.0 ", passing("9~10"));
    EXPECT_EQ("10 ", passing("=10"));
    EXPECT_EQ("abc ABC ", passing("bC"));
    EXPECT_EQ("abc a.c ", passing("~^a.c$"));
    EXPECT_EQ("abc ABC ", passing("~(?i)^abc$"));
    EXPECT_EQ("a\nb ", passing("~\\n")) << "also within several lines";
    EXPECT_EQ("it's ", passing("~'"));
    EXPECT_EQ("x\\ ", passing("~\\\\$"));
    EXPECT_EQ("x\\ ", passing("~\\\\"));
    EXPECT_EQ("2026-01-31 ", passing(">2025-12-31"));
    EXPECT_EQ("(empty) ", passing("empty"));
    EXPECT_EQ("(null) ", passing("null"));
    EXPECT_EQ("null ", passing("\"null\""));
    EXPECT_EQ("9 10 10.0 -2 ABC a.c null (empty) 2026-01-31 it's x\\ a\"b a\nb (null) ", passing("<>abc"));
}

TEST(QuickSearch, SaysWhatItDoesNotUnderstand) {
    EXPECT_EQ("error: Enter a value after >=", inWords(">="));
    EXPECT_EQ("error: Enter a value after ~", inWords("~ "));
    EXPECT_EQ("error: The range ends before it begins: 20 comes after 3.", inWords("20..3"));
    EXPECT_EQ("error: The range ends before it begins: b comes after a.", inWords("b..a"));
    EXPECT_EQ("error: A text that ends in a backslash cannot be searched for; use a regular expression: ~\\\\$",
              inWords("C:\\"));
    EXPECT_EQ("error: The text is too long to search for.", inWords(std::string(5000, 'x')));
    for (const char* expression : {"~[a", "~a)(b", "~(", "~a\\", "~*"}) {
        const std::string words = inWords(expression);
        EXPECT_TRUE(words.starts_with("error: ") && words.size() > 12) << expression << ' ' << words;
    }
}

TEST(QuickSearch, AFilterThatTheFieldCanSayIsShownInIt) {
    for (const DistributionKind kind : {kValues, kPatterns}) {
        for (const char* typed : {"",         "Lyon",    "a, b",          "'tis",        "=10",
                                  "=null",    "<>x",     "null",          "!null",       "empty",
                                  "!empty",   ">9.5",    "<=-2",          ">m",          ">\"10\"",
                                  "1..9",     "a..m",    "\"10\"..\"9\"", ">2026-11-21", "2026-01-01..2026-12-31",
                                  "~^a.c$",   "~it's",   "~\\d+\\\\",     "\"null\"",    "\">5\"",
                                  "\"1..9\"", "\" a \"", "=\" \""}) {
            const Result<std::string> filter = QuickFilter(typed, kind);
            ASSERT_TRUE(filter) << typed << filter.error().text;
            EXPECT_EQ(typed, QuickSearchOf(*filter, kind).value_or("?")) << *filter;
        }
    }
    const auto shown = [](std::string_view filter) { return QuickSearchOf(filter, kValues).value_or("?"); };
    EXPECT_EQ("1..9", shown(*QuickFilter("1~9", kValues)));
    EXPECT_EQ("?", shown("`Count` > 10"));
    EXPECT_EQ("?", shown("tonumber(`Value`) > 9 or 1 == 1"));
    EXPECT_EQ("?", shown("/*{{BEGIN CONDITIONS\r\n"));
    EXPECT_EQ("?", shown(*QuickFilter("Aaa", kPatterns))) << "values are searched ignoring case";
}

// Whatever is typed, nothing is lost and nothing means something else in the dialog.
TEST(QuickSearch, AnyTextIsAFilterThatTheDialogKeepsOrAnError) {
    std::mt19937 random(17); // NOLINT(bugprone-random-generator-seed,cert-msc32-c,cert-msc51-cpp): repeatable
    constexpr std::string_view kSigns = "=<>!~./\\\"'`*?() a1-\r\n,[]{}\xFF";
    testing::ScriptedMessages messages;
    int filters = 0;
    for (int round = 0; round < 4000; ++round) {
        std::string typed;
        for (std::size_t length = random() % 12; length > 0; --length)
            typed += kSigns[random() % kSigns.size()];
        const Result<std::string> filter = QuickFilter(typed, kValues);
        if (!filter) {
            EXPECT_FALSE(filter.error().text.empty()) << typed;
            continue;
        }
        ++filters;
        FilterModel dialog(messages, kValues, *filter);
        EXPECT_TRUE(dialog.Accept()) << typed;
        EXPECT_EQ(*filter, dialog.FilterText()) << typed;
        EXPECT_TRUE(filter->empty() || compileFilter(*filter).ok()) << typed;
        if (const auto shown = QuickSearchOf(*filter, kValues)) {
            EXPECT_EQ(*filter, *QuickFilter(*shown, kValues)) << typed;
        }
    }
    EXPECT_GT(filters, 1000);
}

} // namespace
} // namespace tavix
