#include "expression/RowEvaluator.h"
#include "expression/TextOperators.h"
#include "expression/tests/RowJudge.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tavix::expression {
namespace {

const std::vector<Field> kFields{{"Value", Type::Text},
                                 {"Count", Type::Integer},
                                 {"When", Type::Date},
                                 {"Rate", Type::Real},
                                 {"Flag", Type::Boolean}};

std::string shown(const Value& value) {
    switch (value.type) {
    case Type::Null:
        return "null";
    case Type::Boolean:
        return value.boolean ? "true" : "false";
    case Type::Text:
        return fmt::format("'{}'", value.text);
    case Type::Real:
        return fmt::format("{} real", value.real);
    case Type::Date:
        return fmt::format("{} ticks", value.integer);
    case Type::Integer:
        break;
    }
    return std::to_string(value.integer);
}

/// The value of an expression in a row, as text; or its error.
std::string evaluated(std::string_view text, const std::vector<Value>& row) {
    const Compiled compiled = compile(text, kFields, Wanted::Value);
    if (!compiled.ok())
        return describe(compiled.error);
    RowEvaluator evaluator(*compiled.program);
    const Value value = evaluator.evaluate(row);
    return evaluator.hasFailed() ? evaluator.failure() : shown(value);
}

const std::vector<Value> kRow{Value::ofText("Äbc 5é"), Value::ofInteger(12), Value::ofText("2024-02-29 23:59:58"),
                              Value::ofText("2.5"), Value::ofText("TRUE")};

struct Case {
    const char* text;
    const char* value;
};

void expectValues(std::initializer_list<Case> cases) {
    for (const Case& one : cases)
        EXPECT_EQ(evaluated(one.text, kRow), one.value) << one.text;
}

TEST(Evaluation, OperatorsBindAsWritten) {
    expectValues({{"1 + 2 * 3", "7"},
                  {"(1 + 2) * 3", "9"},
                  {"-2 - -3", "1"},
                  {"-(-5)", "5"},
                  {"7 / 2", "3.5 real"},
                  {"7 % 3", "1"},
                  {"-7 % 3", "-1"},
                  {"1 / 0", "null"},
                  {"1 % 0", "null"},
                  {"'3' * '1.5'", "4.5 real"},
                  {"'x' + 1", "null"},
                  {"1e3", "1000 real"},
                  {".5", "0.5 real"},
                  {"9223372036854775807 + `Count`", "an integer exceeds 64 bits"},
                  {"-9223372036854775808", "-9223372036854775808"},
                  {"9223372036854775808", "9.223372036854776e+18 real"},
                  {"not true or true", "true"},
                  {"not (true or true)", "false"},
                  {"true or true and false", "true"},
                  {"not not true", "true"},
                  {"NOT isnull(`value`) AND `COUNT` == 12", "true"},
                  {"'a' < 'b' and 'B' < 'a' and 'z' < 'é' and '\uFFFF' < '\U0001F642'", "true"},
                  {"'it\\'s' == concat('it', char(39), 's')", "true"},
                  {"'a\\b\\n'", "'a\\b\\n'"},
                  {"/* one /* two */ 1 /* three\n */", "1"}});
}

TEST(Evaluation, NullIsNeitherTrueNorFalse) {
    expectValues({{"null == null", "null"},
                  {"not null", "null"},
                  {"null and false", "false"},
                  {"null and true", "null"},
                  {"null or true", "true"},
                  {"null or false", "null"},
                  {"upper(null)", "null"},
                  {"concat('a', null)", "null"},
                  {"inlist('a', 'a', null)", "true"},
                  {"inlist('a', null, 'a')", "true"},
                  {"inlist('a', 'b', null)", "null"},
                  {"inlist('a', null)", "null"},
                  {"inlist(null, 'a')", "null"},
                  {"inlist(`Value`, nullif(`Count`, 12), `Value`)", "true"},
                  {"inlist(`Value`, nullif(`Count`, 12), 'x')", "null"},
                  {"isnull(not inlist(`Value`, 'x', null))", "true"},
                  {"isnull(null)", "true"},
                  {"isnull('')", "false"},
                  {"isnull(null and true)", "true"},
                  {"coalesce(null, null, 'a')", "'a'"},
                  {"ifnull(null, 3)", "3"},
                  {"max(1, null)", "null"},
                  {"if null then return 1 else return 2", "2"},
                  {"if `Count` > 20 then return 1", "null"}});
}

TEST(Evaluation, TypesMeetByFixedRules) {
    expectValues(
        {{"`Count` == '12'", "true"},
         {"`Count` < '2'", "false"},
         {"`Count` > '9'", "true"},
         {"`Count` == '12.0'", "true"},
         {"`Count` == totext(12.0)", "true"},
         {"`Count` > 'x'", "false"},
         {"`Rate` < '10'", "true"},
         {"inlist(`Count`, '7', '12.0')", "true"},
         {"inlist(`Count`, '12.0', 'x')", "false"},
         {"nullif(`Count`, '12')", "null"},
         {"`Count` == 12.0", "true"},
         {"instr(`Count`, '2')", "2"},
         {"`Flag` == true", "true"},
         {"`Flag` == 'true'", "true"},
         {"`Rate` * 2", "5 real"},
         {"`When` > '2024-02-28'", "true"},
         {"`When` == '2024-02-29T23:59:58Z'", "true"},
         {"inlist(`When`, '2024-02-29T23:59:58Z')", "true"},
         {"compare(`When`, '2024-02-29T23:59:58Z') == 0", "true"},
         {"compare('2024-03-01', `When`)", "1"},
         {"compare(`When`, '2024-03-01T00:59:58+01:00', true) == 0", "true"},
         {"totext(min(`When`, '2024-2-29', '2024-02-28'))",
          "line 1, column 20: '2024-2-29' is not a date; write dates as "
          "'2026-11-21' or '2026-11-21 "
          "08:15:00'"},
         {"totext(max('2024-02-28', `When`, '2024-03-01T00:00'))", "'2024-03-01'"},
         {"nullif(`When`, '2024-02-29T23:59:58Z')", "null"},
         {"nullif(`When`, `Value`)", "null"},
         {"year(coalesce(nullif(`When`, '2024-02-29T23:59:58Z'), '1999-01-01'))", "1999"},
         {"coalesce(`When`, 'none')", "line 1, column 18: 'none' is not a date; write dates as '2026-11-21' "
                                      "or '2026-11-21 08:15:00'; totext(...) makes texts of dates"},
         {"coalesce(totext(`When`), 'none')", "'2024-02-29 23:59:58'"},
         {"year(if(1 == 1) then return '2001-01-01' else return `When`)", "line 1, column 6: expected a value, "
                                                                          "found the word \"if\"; write if "
                                                                          "condition then return a else "
                                                                          "return b"},
         {"coalesce(1, `When`)", "line 1, column 13: coalesce cannot combine date with integer"},
         {"totext(`When`)", "'2024-02-29 23:59:58'"},
         {"coalesce(`Rate`, `Count`)", "2.5 real"},
         {"coalesce(`Count`, 'none')", "'12'"},
         {"if false then return 1 else if true then return 2.5 else return 3", "2.5 real"},
         {"left(12345, '2')", "'12'"}});
}

TEST(Evaluation, TextFunctionsCountCharacters) {
    expectValues({{"length(`Value`)", "6"},
                  {"left(`Value`, 1)", "'Ä'"},
                  {"left(`Value`, -1)", "''"},
                  {"right(`Value`, 2)", "'5é'"},
                  {"substring(`Value`, 2, 2)", "'bc'"},
                  {"substring(`Value`, 0, 2)", "'Ä'"},
                  {"substring(`Value`, 5)", "'5é'"},
                  {"substring(`Value`, -9223372036854775808, 9223372036854775807)", "''"},
                  {"lower('ÄẞİI')", "'äßii'"},
                  {"upper('äßi')", "'ÄßI'"},
                  {"instr(`Value`, 'c')", "3"},
                  {"instr(`Value`, 'x')", "0"},
                  {"instr('abab', 'ab', 2)", "3"},
                  {"compare('a', 'B', true)", "-1"},
                  {"compare('a', 'B')", "1"},
                  {"trim(' \t\u00A0a b\u3000')", "'a b'"},
                  {"ltrim(' a ')", "'a '"},
                  {"rtrim(' a ')", "' a'"},
                  {"replace('aaa', 'aa', 'b')", "'ba'"},
                  {"replace('abc', '', 'x')", "'abc'"},
                  {"lpad('7', 3, '0')", "'007'"},
                  {"lpad('1234', 3, '0')", "'1234'"},
                  {"rpad('é', 4, 'ab')", "'éaba'"},
                  {"starts_with('abc', 'ab') and ends_with('abc', 'bc') and contains('abc', '')", "true"},
                  {"has_control_chars('a\u0085')", "true"},
                  {"has_control_chars('a\u00A0')", "false"},
                  {"lpad('a', -9223372036854775808)", "'a'"},
                  {"char(55296)", "null"}});
    EXPECT_EQ(lowerText("ÀÉ\xC3İSS\xFF"), "àé\xC3iss\xFF") << "bytes that are no text stay";
}

TEST(Evaluation, TestsOfTexts) {
    for (const char* number : {"1", "-1", "+1", "1.", ".5", "1e5", "1E-5", "007"})
        EXPECT_EQ(evaluated(fmt::format("isnumber('{}')", number), kRow), "true") << number;
    for (const char* other : {"", " 1", "1 ", ".", "1e", "1e999", "--1", "0x1", "inf", "nan", "1,5", "e5"})
        EXPECT_EQ(evaluated(fmt::format("isnumber('{}')", other), kRow), "false") << other;
    expectValues({{"match_string('abc', 'a*c')", "true"},
                  {"match_string('abc', 'A*')", "false"},
                  {"match_string('aéc', 'a?c')", "true"},
                  {"match_string('', '*')", "true"},
                  {"match_string('', '?')", "false"},
                  {"match_string('abcabd', '*ab?')", "true"},
                  {"match_string('ab', 'ab*b')", "false"},
                  {"match_string('a*', replace('a-', '-', '*'))", "true"},
                  {"match_string(`Value`, `Value`)", "true"},
                  {"matches('KA1-7', 'K[0-9A-F]+-\\d')", "true"},
                  {"matches('xKA1-7', 'K[0-9A-F]+-\\d')", "false"},
                  {"matches('b', 'a|b')", "true"},
                  {"matches('ba', 'a|b')", "false"},
                  {"matches('ÄB', '(?i)äb')", "true"},
                  {"isdate('2024-02-30')", "false"},
                  {"isdate('2024-02-29T10:00:00.5+02:00')", "true"},
                  {"isblank(' \u3000')", "true"},
                  {"isinteger('12.0')", "false"}});
}

TEST(Evaluation, NumbersAndDates) {
    expectValues({{"round(2.5)", "3 real"},
                  {"round(-2.5)", "-3 real"},
                  {"round(2.345, 2)", "2.35 real"},
                  {"round(1234, -2)", "1200 real"},
                  {"floor(-1.5)", "-2 real"},
                  {"ceil(-1.5)", "-1 real"},
                  {"trunc(-1.5)", "-1 real"},
                  {"abs('-3')", "3 real"},
                  {"mod(7.5, 2)", "1.5 real"},
                  {"sqrt(-1)", "null"},
                  {"power(10, 400)", "null"},
                  {"tointeger('3.9')", "3"},
                  {"tonumber('abc')", "null"},
                  {"min(3, 1.5)", "1.5 real"},
                  {"max('9', 10)", "10"},
                  {"round(1.005, 2)", "1.01 real"},
                  {"round(-1.005, 2)", "-1.01 real"},
                  {"round(1.0049999, 2)", "1 real"},
                  {"round(0.285, 2)", "0.29 real"},
                  {"round(4503599627370497.5)", "4503599627370498 real"},
                  {"round(15, -1)", "20 real"},
                  {"round(1e300, 2)", "1e+300 real"},
                  {"tointeger(1e30)", "an integer exceeds 64 bits"},
                  {"tointeger('9223372036854775808')", "an integer exceeds 64 bits"},
                  {"tointeger(-9223372036854775808.0)", "-9223372036854775808"},
                  {"left('abc', 1e30)", "an integer exceeds 64 bits"},
                  {"nullif(1, 1)", "null"},
                  {"year(`When`) * 10000 + month(`When`) * 100 + day(`When`)", "20240229"},
                  {"hour(`When`) * 10000 + minute(`When`) * 100 + second(`When`)", "235958"},
                  {"weekday('2026-11-21')", "6"},
                  {"datediff('2024-02-28 23:00', '2024-03-01 01:00')", "2"},
                  {"totext(adddays('2024-02-28', 1.5))", "'2024-02-29 12:00:00'"},
                  {"adddays('9999-12-31', 1)", "null"},
                  {"hour('2024-01-01T00:30:00+02:00')", "22"},
                  {"hour('1960-01-01 05:00')", "5"},
                  {"year('12 May')", "null"}});
}

TEST(Evaluation, TheConditionsOfTheFilterDialogAreUnderstood) {
    const auto passes = [](std::string_view condition, const Value& value, std::int64_t count) {
        const std::string text = fmt::format("if {} then\r\n   return true\r\nelse\r\n   return false\r\n", condition);
        const Compiled compiled = compile(text, kFields, Wanted::Condition);
        if (!compiled.ok())
            return describe(compiled.error);
        std::vector<Value> row = kRow;
        row[0] = value;
        row[1] = Value::ofInteger(count);
        return std::string(RowJudge(*compiled.program).judge(row) == Verdict::Passes ? "passes" : "fails");
    };
    struct {
        const char* condition;
        const char* passing;
        const char* failing; ///< null: the value null
    } const cases[] = {
        {"not isnull(`Value`)", "", nullptr},
        {"has_control_chars(`Value`)", "a\tb", "a b"},
        {"isnumber(`Value`)", "-1.5e3", "1 "},
        {"not isnumber(`Value`)", "1 ", nullptr},
        {"upper(`Value`) == `Value`", "ÄB1", "Äb"},
        {"upper(`Value`) != `Value`", "Äb", "ÄB"},
        {"lower(`Value`) == `Value`", "äb", "äB"},
        {"lower(`Value`) != `Value`", "äB", nullptr},
        {"instr(lower(`Value`),'bc') != 0", "aBCd", "abd"},
        {"instr(`Value`,'bc') == 0", "aBc", "abc"},
        {"compare(left(`Value`,3),'abc',false) == 0", "abcd", "Abcd"},
        {"compare(left(`Value`,3),'aBc',true) == 0", "AbCd", "abd"},
        {"compare(right(`Value`,2),'ßé',false) == 0", "xßé", "ßé "},
        {"not inlist(lower(`Value`),'a','b')", "c", "A"},
        {"inlist(`Value`,'a','b')", "b", "B"},
        {"not match_string(lower(`Value`),'a*b?')", "ab", "AxxBc"},
        {"`Value` == 'O\\'Brien'", "O'Brien", "O\\'Brien"},
        {"lower(`Value`) >= 'b'", "B", "a"},
        {"(`Value` == 'a' or\r\n`Value` == 'b') and\r\n`Count` > 10", "b", "c"},
        {"inlist(`Count`,11,12) and\r\nnot isnull(`Value`)", "a", nullptr},
        {"instr(`Count`,'1') != 0 and\r\n`Value` != ''", "a", ""},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(passes(one.condition, Value::ofText(one.passing), 11), "passes") << one.condition;
        const Value failing = one.failing ? Value::ofText(one.failing) : Value{};
        EXPECT_EQ(passes(one.condition, failing, 11), "fails") << one.condition;
    }
    EXPECT_EQ(passes("`Count` > -5", Value{}, 0), "passes");
}

TEST(Evaluation, CellsThatDoNotFitTheirFieldAreReported) {
    std::vector<Value> row = kRow;
    row[1] = Value::ofText("many");
    EXPECT_EQ(evaluated("`Count` > 1", row), "the field `Count` holds \"many\", which is not of type integer");
    row[1] = Value::ofText(" ");
    EXPECT_EQ(evaluated("`Count` > 1", row), "null");
    row[2] = Value::ofDate(INT64_MIN);
    EXPECT_EQ(evaluated("year(`When`)", row), "the field `When` holds a date outside the years 1 to 9999");
}

TEST(Evaluation, TextsThatGrowWithoutEndAreReported) {
    std::string text = "`Value`";
    for (int i = 0; i < 40; ++i)
        text = "replace(" + text + ", 'c', 'cccccccccc')";
    EXPECT_EQ(evaluated(text, kRow), "a text would become too long");
    EXPECT_EQ(evaluated("lpad(`Value`, 9223372036854775807)", kRow), "a text would become too long");
    EXPECT_EQ(evaluated("length(rpad('a', 65537))", kRow), "65537");
    EXPECT_EQ(evaluated("length(rpad('a', 65538))", kRow), "a text would become too long");
}

} // namespace
} // namespace tavix::expression
