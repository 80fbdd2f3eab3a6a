#include "expression/BlockEvaluator.h"
#include "expression/Program.h"
#include "expression/RowEvaluator.h"

#include <gtest/gtest.h>

#include <random>

namespace tavix::expression {
namespace {

const std::vector<Field> kFields{{"Value", Type::Text}, {"Count", Type::Integer}, {"When", Type::Date}};

std::string errorOf(std::string_view text, Wanted wanted = Wanted::Condition) {
    const Compiled compiled = compile(text, kFields, wanted);
    return compiled.ok() ? "none" : describe(compiled.error);
}

struct Case {
    const char* text;
    const char* error;
};

TEST(Errors, SayWhereAndWhy) {
    const Case cases[] = {
        {"", "line 1, column 1: the expression is empty"},
        {" /* nothing */ ", "line 1, column 1: the expression is empty"},
        {"`Vlaue` == 'a'", "line 1, column 1: there is no field `Vlaue`"},
        {"'é' == `Vlaue`", "line 1, column 8: there is no field `Vlaue`"},
        {"if true then\r\n   return tru\r\n", "line 2, column 11: tru is a name without \"(\"; fields stand in grave "
                                              "accents, texts in single quotes"},
        {"`Value` = 'a'", "line 1, column 9: a comparison is written =="},
        {"`Value` == \"a\"", "line 1, column 12: texts stand in single quotes, fields in grave accents"},
        {"`Value` == 'a", "line 1, column 12: the text that begins here is not closed by a single quote"},
        {"`Value", "line 1, column 1: the field name that begins here is not closed by a grave accent"},
        {"1 > 2 /* x", "line 1, column 7: the comment that begins here is not closed by */"},
        {"if `Value` == 'a\\' then\r\n   return true\r\nelse\r\n   return false\r\n",
         "line 1, column 15: the text that begins here is not closed: \\' does not end it. A text cannot end in a "
         "backslash; write concat('...', char(92))"},
        {"`Value` == 'a\\' or `Value` == 'b'",
         "line 1, column 32: expected the end of the expression, found the word \"b\" (the text in line 1, column 12 "
         "goes on behind its \\'; a text cannot end in a backslash, write concat('...', char(92)))"},
        {"`Count` > 10abc", "line 1, column 11: 10abc is no number"},
        {"`Count` > 1.2.3", "line 1, column 11: 1.2.3 is no number"},
        {"`Count` > 1e999", "line 1, column 11: the number 1e999 is out of range"},
        {"`Value` then", "line 1, column 9: expected the end of the expression, found the word \"then\""},
        {"(1 == 1", "line 1, column 8: expected \")\", found the end"},
        {"1 < 2 < 3", "line 1, column 7: comparisons cannot be chained; join them with \"and\" or use parentheses"},
        {"if 1 == 1 return true", "line 1, column 11: expected \"then\", found the word \"return\""},
        {"if 1 == 1 then true", "line 1, column 16: expected \"if\" or \"return\", found the word \"true\""},
        {"nosuch(1)", "line 1, column 1: there is no function nosuch"},
        {"len(`Value`) > 4", "line 1, column 1: there is no function len; write length"},
        {"to_number(`Value`) > 4", "line 1, column 1: there is no function to_number; write tonumber"},
        {"`Value` between 1 and 2", "line 1, column 9: expected the end of the expression, found the word \"between\"; "
                                    "write value >= a and value <= b"},
        {"(`Value` is null)", "line 1, column 10: expected \")\", found the word \"is\"; write isnull(value) or not "
                              "isnull(value)"},
        {"`Value` <> 'a'", "line 1, column 9: \"not equal\" is written !="},
        {"`Count` ^ 2 > 4", "line 1, column 9: write power(a, b)"},
        {"isnull()", "line 1, column 1: isnull takes 1 argument, not 0"},
        {"compare('a')", "line 1, column 1: compare takes 2 to 3 arguments, not 1"},
        {"inlist(`Value`)", "line 1, column 1: inlist takes at least 2 arguments, not 1"},
        {"year(true) == 1", "line 1, column 6: date is wanted here, and this is of type boolean"},
        {"true < false", "line 1, column 6: true and false have no order; compare them with == or !="},
        {"true == 1", "line 1, column 6: boolean cannot be compared with integer"},
        {"`When` == 'soon'",
         "line 1, column 11: 'soon' is no date; dates are written '2026-11-21' or '2026-11-21 08:15:00'"},
        {"`Count`", "line 1, column 1: a condition is wanted here, and this is of type integer"},
        {"if true then return 1 else return false",
         "line 1, column 21: a condition is wanted here, and this is of type integer"},
        {"matches(`Value`, '(')", "line 1, column 18: this is no regular expression: missing ): ("},
        {"matches(`Value`, `Value`)", "line 1, column 18: matches wants a fixed text here"},
        {"`Value` == '\xFF'", "line 1, column 13: a byte here belongs to no character of UTF-8"},
        {"`Value` \x01", "line 1, column 9: a control character cannot stand here"},
        {"`Value` # 1", "line 1, column 9: the character # cannot stand here"},
        {"Cannot display expression:\r\n\r\nCondition list cannot end with AND or OR",
         "line 1, column 1: cannot is a name without \"(\"; fields stand in grave accents, texts in single quotes"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(errorOf(one.text), one.error) << one.text;
}

TEST(Errors, ANumberBesideATextIsRemarkedOn) {
    const auto remarkOn = [](std::string_view text) {
        const Compiled compiled = compile(text, kFields, Wanted::Condition);
        EXPECT_TRUE(compiled.ok()) << text;
        return compiled.remark ? describe(*compiled.remark) : "none";
    };
    EXPECT_EQ(remarkOn("true and 10 < `Value`"),
              "line 1, column 13: this compares texts, among which '9' stands behind '10'; to compare numbers write "
              "tonumber(`Value`)");
    EXPECT_EQ(remarkOn("left(`Value`, 2) >= `Count`"),
              "line 1, column 18: this compares texts, among which '9' stands behind '10'; to compare numbers write "
              "tonumber(...)");
    for (const char* text : {"`Value` == 10", "`Value` > '10'", "`Count` > '10'", "tonumber(`Value`) > 10",
                             "`Value` * 1 > 10", "`When` > '2026-01-01'"})
        EXPECT_EQ(remarkOn(text), "none") << text;
}

TEST(Errors, ValuesOfSeveralTypesHaveNoCommonOne) {
    EXPECT_EQ(errorOf("if true then return 1 else return false", Wanted::Value),
              "line 1, column 35: one result is of type integer and this of type boolean");
    EXPECT_EQ(errorOf("coalesce(1, true)", Wanted::Value),
              "line 1, column 13: coalesce cannot put boolean beside integer");
    const Field twins[] = {{"id", Type::Text}, {"ID", Type::Text}, {"a`b", Type::Text}};
    EXPECT_TRUE(compile("`ID` == `id` and `A``B` == ''", twins, Wanted::Condition).ok());
    EXPECT_EQ(compile("`Id` == ''", twins, Wanted::Condition).error.message, "there is no field `Id`");
}

std::string repeated(std::string_view part, std::size_t count) {
    std::string out;
    for (std::size_t i = 0; i < count; ++i)
        out += part;
    return out;
}

TEST(Errors, DeepAndLongTextsAreRefusedInBoundedTime) {
    constexpr std::size_t kMany = 100'000;
    const std::string tooDeep = "the expression is nested deeper than 200 levels";
    const auto message = [](const std::string& text) {
        return compile(text, kFields, Wanted::Condition).error.message;
    };
    EXPECT_EQ(message(std::string(std::size_t{1} << 20, '(')), tooDeep);
    EXPECT_EQ(message(std::string((std::size_t{1} << 20) + 1, '(')), "the expression is longer than 1048576 bytes");
    EXPECT_EQ(message(repeated("isnull(", kMany)), tooDeep);
    EXPECT_EQ(message(repeated("if true then ", kMany / 2)), tooDeep);
    EXPECT_EQ(message("1" + repeated("+1", kMany) + " == 1"), tooDeep);
    EXPECT_EQ(message("1" + repeated("*(1", kMany)), tooDeep);
    EXPECT_EQ(message(repeated("(1*2+", 150) + "1" + repeated(")", 150)), "a condition is wanted here, and this is of "
                                                                          "type integer");
    // What is long and not deep is fine.
    EXPECT_EQ(message(repeated("not ", kMany) + "true"), "");
    EXPECT_EQ(message("true" + repeated(" and true", kMany)), "");
    EXPECT_EQ(message("if true then return true" + repeated(" else if true then return false", 30'000)), "");
    EXPECT_EQ(message("inlist(`Value`" + repeated(",'a'", 60'000) + ")"), "");
    EXPECT_EQ(message("1 == " + repeated("-", kMany) + "1"), "");
    EXPECT_NE(message("matches(`Value`, '" + repeated("(", 5000) + repeated("){1000}", 5000) + "')"), "");
}

TEST(Errors, WildcardsThatBlowUpDoNot) {
    const std::string text(200'000, 'a');
    const std::vector<Value> row{Value::ofText(text), Value::ofInteger(1), Value{}};
    for (const std::string& pattern : {repeated("*a", 50) + "*b", repeated("a*", 50) + "?b?",
                                       "*" + repeated("?a", 500) + "b*", "*" + repeated("?a", 500) + "?b*"}) {
        const Compiled compiled = compile("match_string(`Value`, '" + pattern + "')", kFields, Wanted::Condition);
        ASSERT_TRUE(compiled.ok());
        EXPECT_NE(RowEvaluator(*compiled.program).judge(row), Verdict::Passes) << pattern;
    }
}

TEST(Errors, RowsOfABlockThatFailAreCountedAndLeftOut) {
    const Compiled compiled = compile("`Count` * 4611686018427387904 != 1 or true", kFields, Wanted::Condition);
    ASSERT_TRUE(compiled.ok());
    BlockEvaluator evaluator(*compiled.program);
    const std::vector<std::uint64_t> counts{1, 2, 0, 3};
    const BlockColumn columns[] = {{}, {{}, {}, counts, {}}, {}};
    const auto passing = evaluator.passing({counts.size(), columns});
    EXPECT_EQ(std::vector<std::uint32_t>(passing.begin(), passing.end()), (std::vector<std::uint32_t>{0, 2}));
    EXPECT_EQ(evaluator.failures(), 2U);
    EXPECT_EQ(evaluator.firstFailedRow(), 1U);
    EXPECT_EQ(evaluator.firstFailure(), "an integer grows beyond 64 bits");
}

TEST(Errors, AnyTokensGiveAProgramOrAnError) {
    const std::vector<std::string> words{"if",      " then ",  " else ", " return ", "(",    ")",  ",",     "`Value`",
                                         "`Count`", "'a'",     "'\\'",   "1",        ".",    "e5", " and ", " or ",
                                         " not ",   "==",      "<",      "-",        "*",    "/*", "*/",    "left",
                                         "isnull(", "inlist(", "null",   "\r\n",     "\xC3", "é",  "\\"};
    std::mt19937 random(7);
    std::size_t programs = 0;
    for (int i = 0; i < 30'000; ++i) {
        std::string text;
        for (std::size_t n = random() % 12; n > 0; --n)
            text += words[random() % words.size()];
        const Compiled compiled = compile(text, kFields, Wanted::Value);
        programs += compiled.ok() ? 1 : 0;
        EXPECT_NE(compiled.ok(), !compiled.error.message.empty()) << text;
    }
    EXPECT_GT(programs, 100U);
}

} // namespace
} // namespace tavix::expression
