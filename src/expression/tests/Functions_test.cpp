#include "base/DateTicks.h"
#include "expression/RowEvaluator.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace tavix::expression {
namespace {

const std::vector<Field> kFields{{"Value", Type::Text}, {"Count", Type::Integer}, {"When", Type::Date}};
const std::vector<Value> kRow{Value::ofText("Crème brûlée"), Value::ofInteger(12),
                              Value::ofText("2024-02-29 23:59:58")};

/// The value as text, in a run that began at 2026-11-22 08:15; or the error.
std::string evaluated(std::string_view text) {
    const Compiled compiled = compile(text, kFields, Wanted::Value, *parseDate("2026-11-22 08:15"));
    if (!compiled.ok())
        return describe(compiled.error);
    RowEvaluator evaluator(*compiled.program);
    const Value value = evaluator.evaluate(kRow);
    if (evaluator.hasFailed())
        return evaluator.failure();
    switch (value.type) {
    case Type::Null:
        return "null";
    case Type::Boolean:
        return value.boolean ? "true" : "false";
    case Type::Text:
        return fmt::format("'{}'", value.text);
    case Type::Real:
        return fmt::format("{:.4f}", value.real);
    case Type::Date:
        return formatDate(value.integer);
    case Type::Integer:
        break;
    }
    return std::to_string(value.integer);
}

struct Case {
    const char* text;
    const char* value;
};

void expectValues(std::initializer_list<Case> cases) {
    for (const Case& one : cases)
        EXPECT_EQ(evaluated(one.text), one.value) << one.text;
}

TEST(Functions, TestsWrittenInWordsMeanTheFunctions) {
    expectValues({
        {"`Count` in (1, 12)", "true"},
        {"`Count` NOT IN (1, 12)", "false"},
        {"'c' in ('a', null)", "null"},
        {"`Count` between 12 and 13", "true"},
        {"`Count` between 13 and 12", "false"},
        {"`Count` not between 13 and 14 and true", "true"},
        {"`Count` + 1 between 13 and 13.5", "true"},
        {"`Count` between 1 and null", "null"},
        {"`When` between '2024-02-29' and '2024-03-01'", "true"},
        {"`Value` is null", "false"},
        {"null is null", "true"},
        {"`Value` is not null or false", "true"},
        {"`Value` like 'Cr_me%'", "true"},
        {"`Value` not like '%b'", "true"},
        {"'a*b' like 'a*_'", "true"},
        {"'axb' like 'a*_'", "false"},
        {"'50%' like '50\\%'", "true"},
        {"'505' like '50\\%'", "false"},
        {"not 'a' in ('b')", "true"},
        {"if 1 in (1) then return 'yes' else return 'no'", "'yes'"},
    });
    EXPECT_EQ(evaluated("`Value` in ()"), "line 1, column 13: expected a value, found \")\"");
    EXPECT_EQ(evaluated("`Value` in 'a'"), "line 1, column 12: expected \"(\", found a text");
    EXPECT_EQ(evaluated("`Count` between 1"), "line 1, column 18: expected \"and\", found the end");
    EXPECT_EQ(evaluated("`Value` is 'a'"), "line 1, column 12: expected \"null\", found a text");
    EXPECT_EQ(evaluated("`Value` like `Value`"),
              "line 1, column 14: expected a text after like, with % and _, found the field `Value`");
    EXPECT_EQ(evaluated("`When` between 'soon' and 'later'"),
              "line 1, column 16: 'soon' is not a date; write dates as '2026-11-21' or '2026-11-21 08:15:00'");
    const Compiled range = compile("`Count` between 3 and 5", kFields, Wanted::Condition);
    EXPECT_EQ(range.program->passingRange(1), (IntegerRange{3, 5})) << "blocks of other counts are skipped";
    EXPECT_EQ(describe(*compile("`Value` between 1 and 5", kFields, Wanted::Condition).remark),
              "line 1, column 9: this compares texts, where '9' comes after '10'; to compare numbers write "
              "tonumber(`Value`)");
}

TEST(Functions, DatesFollowTheCalendar) {
    expectValues({
        {"now()", "2026-11-22 08:15:00"},
        {"today()", "2026-11-22"},
        {"datediff(`When`, today())", "997"},
        {"datediff('2024-12-31 23:00', '2025-01-01', 'year')", "1"},
        {"datediff('2024-01-01', '2024-12-31', 'Years')", "0"},
        {"datediff('2024-11-30', '2023-12-01', 'month')", "-11"},
        {"datediff('2024-03-31', '2024-04-01', 'quarter')", "1"},
        {"datediff('2026-11-22', '2026-11-23', 'week')", "1"},
        {"datediff('1969-12-31 23:59:59.5', '1970-01-01', 'second')", "1"},
        {"datediff('2024-01-01', '2024-01-02', 'hours')", "24"},
        {"addmonths('2024-01-31', 1)", "2024-02-29"},
        {"addmonths('2024-02-29 10:00', -12)", "2023-02-28 10:00:00"},
        {"addmonths('2024-02-29', 120000)", "null"},
        {"addmonths('0001-01-15', -1)", "null"},
        {"lastday(`When`)", "2024-02-29"},
        {"lastday('9999-12-01')", "9999-12-31"},
        {"quarter('2024-10-01')", "4"},
        {"dayofyear('2024-12-31')", "366"},
        {"week('2024-12-30')", "1"},
        {"week('2027-01-03')", "53"},
        {"startof(`When`, 'day')", "2024-02-29"},
        {"startof('2026-11-22', 'week')", "2026-11-16"},
        {"startof('0001-01-01', 'week')", "0001-01-01"},
        {"startof('2024-08-31', 'quarter')", "2024-07-01"},
        {"startof(`When`, 'minute')", "2024-02-29 23:59:00"},
        {"startof('1969-12-31 23:59:59', 'hour')", "1969-12-31 23:00:00"},
        {"startof(`When`, 'century')",
         "'century' is not a unit of time: second, minute, hour, day, week, month, quarter or year"},
        {"todate('14.01.2001', 'dd.MM.yyyy')", "2001-01-14"},
        {"todate('2001-01-14', 'dd.MM.yyyy')", "null"},
        {"todate(null, 'dd.MM.yyyy')", "null"},
        {"todate(' 14/01/2001 ', 'date day-first')", "2001-01-14"},
        {"todate('01/02/2001', 'date month-first')", "2001-01-02"},
        {"todate('86400', 'date epoch-seconds')", "1970-01-02"},
        {"todate('x', 'date day-first')", "null"},
        {"todate('5', 'integer')",
         "line 1, column 13: \"i\" has no meaning in a date format; put literal letters in single quotes"},
        {"todate('1.1.2001', 'day')",
         "line 1, column 20: \"y\" has no meaning in a date format; put literal letters in single quotes"},
        {"todate('1.1.2001', `Value`)", "line 1, column 20: todate wants a fixed text here"},
    });
}

TEST(Functions, TextsAreTakenApartAndPutTogether) {
    expectValues({
        {"regexp_extract('order 66, 67', '[0-9]+')", "'66'"},
        {"regexp_extract('order 66', '([a-z]+) ([0-9]+)', 2)", "'66'"},
        {"regexp_extract('order 66', '([a-z]+)', 2)", "null"},
        {"regexp_extract('b', '(a)?b', 1)", "null"},
        {"regexp_extract('order', '[0-9]')", "null"},
        {"regexp_replace('2024-02-29', '(\\d+)-(\\d+)-(\\d+)', '\\3.\\2.\\1')", "'29.02.2024'"},
        {"regexp_replace('äbä', 'ä', '')", "'b'"},
        {"regexp_replace('äb', '', '-')", "'-ä-b-'"},
        {"regexp_replace('aaa', 'a*', 'x')", "'x'"},
        {"regexp_replace('abc', 'x', 'y')", "'abc'"},
        {"regexp_extract('a', '(')", "line 1, column 21: this is not a regular expression: missing ): ("},
        {"split('a, b,, c', ',', 2)", "' b'"},
        {"split('a, b,, c', ',', 3)", "''"},
        {"split('a, b,, c', ',', 5)", "null"},
        {"split('abc', '', 1)", "'abc'"},
        {"split('abc', 'b', 0)", "null"},
        {"initcap('o\\'brien MARY-ann éCOLE 2nd')", "'O'Brien Mary-Ann École 2nd'"},
        {"reverse('aé🙂')", "'🙂éa'"},
        {"unaccent(`Value`)", "'Creme brulee'"},
        {"unaccent('Łódź ß Ångström')", "'Łodz ß Angstrom'"},
        {"unaccent(concat('e', char(769)))", "'e'"},
    });
    EXPECT_EQ(evaluated("regexp_replace('a', 'a', '\\1')").substr(0, 46),
              "line 1, column 21: this is not a replacement: ");
    EXPECT_EQ(evaluated("length(regexp_replace(rpad(`Value`, 60000, 'a'), 'a', rpad('b', 1000, 'b')))"),
              "a text would become too long");
}

TEST(Functions, LikenessIsMeasuredAsPublished) {
    // The pairs of names are those of Winkler (1994), table 1, and of the National Archives' description of Soundex.
    expectValues({
        {"editdistance('kitten', 'sitting')", "3"},
        {"editdistance('', 'abc')", "3"},
        {"editdistance('é', 'e')", "1"},
        {"jarowinkler('DWAYNE', 'DUANE')", "0.8400"},
        {"jarowinkler('MARTHA', 'MARHTA')", "0.9611"},
        {"jarowinkler('DIXON', 'DICKSONX')", "0.8133"},
        {"jarowinkler('', '')", "1.0000"},
        {"jarowinkler('a', '')", "0.0000"},
        {"soundex('Washington')", "'W252'"},
        {"soundex('Lee')", "'L000'"},
        {"soundex('Gutierrez')", "'G362'"},
        {"soundex('Pfister')", "'P236'"},
        {"soundex('Tymczak')", "'T522'"},
        {"soundex('Ashcraft')", "'A261'"},
        {"soundex('42')", "null"},
    });
    EXPECT_EQ(evaluated("editdistance(rpad('a', 2001), 'b')"),
              "texts of more than 2000 characters are not compared for likeness");
}

TEST(Functions, CheckDigitsAreVerified) {
    expectValues({
        {"isluhn('4539 1488 0343 6467')", "true"},
        {"isluhn('4539 1488 0343 6476')", "false"},
        {"isluhn('0')", "false"},
        {"isluhn(' 18')", "false"},
        {"isluhn('1x8')", "false"},
        {"isiban('GB82 WEST 1234 5698 7654 32')", "true"},
        {"isiban('gb82west12345698765432')", "true"},
        {"isiban('GB82 WEST 1234 5698 7645 32')", "false"},
        {"isiban('82GBWEST12345698765432')", "false"},
        {"isean('4006381333931')", "true"},
        {"isean('4006381333932')", "false"},
        {"isean('73513537')", "true"},
        {"isean('036000291452')", "true"},
        {"isean('00000000000')", "false"},
    });
}

TEST(Functions, ValuesAreReadAsAReadingSays) {
    const std::string known = "; readings are 'integer', 'real', 'real decimal-comma', 'date', 'date day-first', 'date "
                              "month-first', 'boolean' and the like";
    const std::string noReading = "line 1, column 12: \"number\" is not a reading" + known;
    const std::string noNumber = "line 1, column 16: \"date\" is not a reading of numbers" + known;
    expectValues({{"fits('12', 'integer')", "true"},
                  {"fits(' 12 ', 'integer')", "true"},
                  {"fits('12.5', 'integer')", "false"},
                  {"fits('', 'integer')", "false"},
                  {"fits(null, 'integer')", "null"},
                  {"fits('1.234,5', 'real decimal-comma')", "true"},
                  {"fits('1,234.5', 'real decimal-comma')", "false"},
                  {"fits('12%', 'real unit=%')", "true"},
                  {"fits('13/01/2001', 'date day-first')", "true"},
                  {"fits('01/13/2001', 'date day-first')", "false"},
                  {"fits('TRUE', 'boolean')", "true"},
                  {"fits(`Count`, 'integer')", "true"},
                  {"fits('12', 'number')", noReading.c_str()},
                  {"fits('12', `Value`)", "line 1, column 12: fits wants a fixed text here"},
                  {"tonumber('1.234,5', 'real decimal-comma')", "1234.5000"},
                  {"tonumber('12%', 'integer unit=%')", "12.0000"},
                  {"tonumber('x', 'real')", "null"},
                  {"tonumber('12', 'date')", noNumber.c_str()}});
}

} // namespace
} // namespace tavix::expression
