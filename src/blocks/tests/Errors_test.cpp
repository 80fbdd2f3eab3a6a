#include "blocks/BlockEvaluator.h"
#include "expression/Program.h"
#include "expression/tests/RowJudge.h"

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
        {"`Vlaue` == 'a'", "line 1, column 1: there is no field `Vlaue` (did you mean \"Value\"?)"},
        {"'é' == `xyz`", "line 1, column 8: there is no field `xyz`"},
        {"Vlaue == 'a'", "line 1, column 1: there is no field Vlaue (did you mean \"Value\"?); put texts in quotes"},
        {"if true then\r\n   return Tru\r\n", "line 2, column 11: there is no field Tru; put texts in quotes"},
        {"`Value` == \"a", "line 1, column 12: the text that begins here is not closed by a double quote"},
        {"`Count` > 1 and 'a' == \"value\"",
         "line 1, column 24: \"value\" may be the field or a text here; write `value` or 'value'"},
        {"`Value` == 'a", "line 1, column 12: the text that begins here is not closed by a single quote"},
        {"`Value", "line 1, column 1: the field name that begins here is not closed by a grave accent"},
        {"1 > 2 /* x", "line 1, column 7: the comment that begins here is not closed by */"},
        {"if `Value` == 'a\\' then\r\n   return true\r\nelse\r\n   return false\r\n",
         "line 1, column 15: the text that begins here is not closed: \\' does not end it. A text cannot end in a "
         "backslash; write concat('...', char(92))"},
        {"`Value` == 'a\\' or `Value` == 'b'",
         "line 1, column 32: expected the end of the expression, found the word \"b\" (the text in line 1, column 12 "
         "continues after its \\'; a text cannot end in a backslash, write concat('...', char(92)))"},
        {"`Count` > 10abc", "line 1, column 11: 10abc is not a number"},
        {"`Count` > 1.2.3", "line 1, column 11: 1.2.3 is not a number"},
        {"`Count` > 1e999", "line 1, column 11: the number 1e999 is out of range"},
        {"`Value` then", "line 1, column 9: expected the end of the expression, found the word \"then\""},
        {"(1 == 1", "line 1, column 8: expected \")\", found the end"},
        {"1 < 2 < 3", "line 1, column 7: comparisons cannot be chained; join them with \"and\" or use parentheses"},
        {"if 1 == 1 return true", "line 1, column 11: expected \"then\", found the word \"return\""},
        {"if 1 == 1 then true", "line 1, column 16: expected \"if\" or \"return\", found the word \"true\""},
        {"nosuch(1)", "line 1, column 1: there is no function nosuch"},
        {"len(`Value`) > 4", "line 1, column 1: there is no function len; write length"},
        {"to_number(`Value`) > 4", "line 1, column 1: there is no function to_number; write tonumber"},
        {"`Value` between 1 or 2", "line 1, column 19: expected \"and\", found the word \"or\""},
        {"(`Value` is 1)", "line 1, column 13: expected \"null\", found the number 1"},
        {"`Value` not 'a'", "line 1, column 9: expected the end of the expression, found the word \"not\"; put \"not\" "
                            "before the whole condition, as in not isblank(value)"},
        {"`Value` <> 'a'", "line 1, column 9: \"not equal\" is written !="},
        {"`Count` ^ 2 > 4", "line 1, column 9: write power(a, b)"},
        {"isnull()", "line 1, column 1: isnull takes 1 argument, not 0"},
        {"compare('a')", "line 1, column 1: compare takes 2 to 3 arguments, not 1"},
        {"inlist(`Value`)", "line 1, column 1: inlist takes at least 2 arguments, not 1"},
        {"year(true) == 1", "line 1, column 6: date is needed here, but this is of type boolean"},
        {"true < false", "line 1, column 6: true and false have no order; compare them with == or !="},
        {"true == 1", "line 1, column 6: boolean cannot be compared with integer"},
        {"`When` == 'soon'",
         "line 1, column 11: 'soon' is not a date; write dates as '2026-11-21' or '2026-11-21 08:15:00'"},
        {"`Count`", "line 1, column 1: a condition is needed here, but this is of type integer"},
        {"if true then return 1 else return false",
         "line 1, column 21: a condition is needed here, but this is of type integer"},
        {"matches(`Value`, '(')", "line 1, column 18: this is not a regular expression: missing ): ("},
        {"matches(`Value`, `Value`)", "line 1, column 18: matches wants a fixed text here"},
        {"`Value` == '\xFF'", "line 1, column 13: this byte is not UTF-8"},
        {"`Value` \x01", "line 1, column 9: a control character is not allowed here"},
        {"`Value` # 1", "line 1, column 9: the character # is not allowed here"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(errorOf(one.text), one.error) << one.text;
}

TEST(Errors, WordsOfOtherLanguagesAreAnsweredWithThoseOfThisOne) {
    const Case cases[] = {
        {"`Value` == 'O\'\'Brien'",
         "column 15: expected the end of the expression, found a text; a quote within a text "
         "is written \\', as in 'O\\'Brien'"},
        {"`Value` ILIKE 'a%'", "column 9: expected the end of the expression, found the word \"ILIKE\"; write "
                               "lower(value) like 'a%'"},
        {"`Value` ~ 'a'", "column 9: write matches(text, 'expression')"},
        {"CAST(`Value` as int) > 1", "column 1: there is no function CAST; write tonumber(...), tointeger(...), "
                                     "totext(...) or todate(...)"},
        {"`Value`::int > 1", "column 8: write tonumber(...), tointeger(...), totext(...) or todate(...)"},
        {"case when 1 == 1 then 2", "column 6: expected the end of the expression, found the word \"when\"; write if "
                                    "condition then return a else return b"},
        {"if(`Count` > 1, true, false)",
         "column 15: if is not a function; write if condition then return a else return b"},
        {"1 + if(true, 1, 2) > 1",
         "column 5: expected a value, found the word \"if\"; write if condition then return a "
         "else return b"},
        {"count(*) > 1", "column 1: there is no function count; for counts, sums and averages of rows use a "
                         "custom metric (count:, sum:, average:)"},
        {"`When` < current_date()", "column 10: there is no function current_date; write today()"},
        {"`When` < now", "column 10: there is no field now; write now()"},
        {"`Count` => 1", "column 9: \"greater than or equal\" is written >="},
        {"`Count` > 1 -- only these", "column 21: expected the end of the expression, found the word \"these\"; write "
                                      "comments between /* and */"},
        {"`Count` > 1 -- only", "column 16: there is no field only; write comments between /* and */"},
        {"`Value` == ’a’", "column 12: the character ’ is not allowed here; put texts in plain quotes, as in 'a' "
                           "or \"a\""},
        {"`Count` > 1 ? true", "column 13: write if condition then return a else return b"},
        {"Nosuch(1)", "column 1: there is no function Nosuch"},
        {"if 1 == 1 THAN return true", "column 11: expected \"then\", found the word \"THAN\""},
    };
    for (const Case& one : cases)
        EXPECT_EQ(errorOf(one.text), std::string("line 1, ") + one.error) << one.text;
    // Two signs are no comment where both mean something.
    EXPECT_EQ(errorOf("`Count` == 3--1"), "none");
}

TEST(Errors, WhatIsRepeatedIsCutAndLimitsAreNamed) {
    const std::string name(5000, 'x');
    EXPECT_LT(errorOf("`" + name + "` == 1").size(), 150U);
    EXPECT_LT(errorOf(name + "(1)").size(), 150U);
    EXPECT_LT(errorOf("1 == 1 " + name).size(), 150U);
    EXPECT_LT(errorOf("1 == 1" + std::string(5000, '0') + "x").size(), 150U);
    std::string list = "inlist(`Value`";
    for (int i = 0; i < 70'000; ++i)
        list += ",'a'";
    EXPECT_EQ(errorOf(list + ")"), "line 1, column 1: inlist takes at most 65535 arguments, not 70001");
}

TEST(Errors, FieldsAndTextsMayStandAsAShellLeavesThem) {
    const Case cases[] = {{"Count > 10", "none"},
                          {"value = \"it's\" and COUNT = 1", "none"},
                          {"inlist(Value, \"a\\\"b\", 'c')", "none"},
                          {"if Count > 1 then return Value = 'a' else return false", "none"}};
    for (const Case& one : cases)
        EXPECT_EQ(errorOf(one.text), one.error) << one.text;
    const Field odd[] = {{"left", Type::Text}, {"true", Type::Text}};
    EXPECT_TRUE(compile("left(left, 1) = 'a'", odd, Wanted::Condition).ok());
    EXPECT_FALSE(compile("true = 'a'", odd, Wanted::Condition).ok() &&
                 compile("true = 'a'", odd, Wanted::Condition).program->uses(1))
        << "a word of the language is not a field";
}

std::string remarkOn(std::string_view text, Wanted wanted = Wanted::Condition) {
    const Compiled compiled = compile(text, kFields, wanted);
    EXPECT_TRUE(compiled.ok()) << text;
    return compiled.remark ? describe(*compiled.remark) : "none";
}

TEST(Errors, PlacesWhereTypesMeetAreRemarkedOn) {
    const Case cases[] = {
        {"true and 10 < `Value`", "column 13: this compares texts, where '9' comes after '10'; to compare "
                                  "numbers write tonumber(`Value`)"},
        {"left(`Value`, 2) >= `Count`", "column 18: this compares texts, where '9' comes after '10'; to compare "
                                        "numbers write tonumber(...)"},
        {"round(`Value`) == `Value`",
         "column 16: this compares texts, where '5.0' differs from '5'; to compare numbers "
         "write tonumber(`Value`)"},
        {"`Value` == 10", "column 9: this compares texts, where '5.0' differs from '5'; to compare numbers write "
                          "tonumber(`Value`)"},
        {"`Count` > '9'", "column 9: the text '9' is read as a number here; write it without quotes"},
        {"`Count` == 'many'", "column 9: this compares texts, since 'many' is not a number"},
        {"inlist(`Count`, 1, 'many')", "column 1: this compares texts, since 'many' is not a number"},
        {"inlist(`Value`, 1, 2)", "column 1: this compares texts, where '5.0' differs from '5'; to compare numbers "
                                  "write tonumber(`Value`)"},
        {"max(`Value`, 5) == 'a'", "column 1: this compares texts, where '9' comes after '10'; to compare "
                                   "numbers write tonumber(`Value`)"},
        {"`Value` != null", "column 9: a comparison with null is never true; write not isnull(`Value`)"},
        {"null == left(`Value`, 1)", "column 6: a comparison with null is never true; write isnull(...)"},
        {"isblank(`Value`) == 'yes'", "column 18: this compares texts: true is 'true' here and false 'false', and "
                                      "neither is 'yes'"},
    };
    for (const Case& one : cases)
        EXPECT_EQ(remarkOn(one.text), std::string("line 1, ") + one.error) << one.text;
    for (const char* text : {"`Value` > '10'", "tonumber(`Value`) > 10", "`Value` * 1 > 10", "`When` > '2026-01-01'",
                             "`When` > `Value`", "coalesce(`Count`, 'none') == 'none'", "inlist(`Value`, 'a', null)",
                             "isblank(`Value`) == 'true'", "instr(`Count`, '1') != 0"})
        EXPECT_EQ(remarkOn(text), "none") << text;
}

TEST(Errors, ValuesOfSeveralTypesHaveNoCommonOne) {
    EXPECT_EQ(errorOf("if true then return 1 else return false", Wanted::Value),
              "line 1, column 35: one result is of type integer and this of type boolean");
    EXPECT_EQ(errorOf("coalesce(1, true)", Wanted::Value),
              "line 1, column 13: coalesce cannot combine boolean with integer");
    const Field twins[] = {{"id", Type::Text}, {"ID", Type::Text}, {"a`b", Type::Text}};
    EXPECT_TRUE(compile("`ID` == `id` and `A``B` == ''", twins, Wanted::Condition).ok());
    EXPECT_EQ(compile("`Id` == ''", twins, Wanted::Condition).error.message,
              "there is no field `Id` (did you mean \"id\"?)");
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
    EXPECT_EQ(message("1" + repeated("+1", kMany) + " == 1"), "more than 1000 values are joined by + - * / %");
    EXPECT_EQ(message("1" + repeated("*(1", kMany)), tooDeep);
    EXPECT_EQ(message(repeated("(1*2+", 150) + "1" + repeated(")", 150)), "a condition is needed here, but this is of "
                                                                          "type integer");
    // Long expressions that are not deep are fine.
    EXPECT_EQ(message("1" + repeated("+`Count`", 900) + " == 1"), "");
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
        EXPECT_NE(RowJudge(*compiled.program).judge(row), Verdict::Passes) << pattern;
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
    EXPECT_EQ(evaluator.failures().count, 2U);
    EXPECT_EQ(evaluator.failures().firstRow, 1U);
    EXPECT_EQ(evaluator.failures().reason, "an integer exceeds 64 bits");
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
