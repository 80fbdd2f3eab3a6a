#include "expression/RowEvaluator.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace tavix::expression {
namespace {

using Cell = std::optional<std::string_view>;

/// The answer of an expression over the columns a, b and c: "true", "false", "null", or a text; an error or failure.
std::string answer(std::string_view text, const std::vector<Cell>& cells) {
    static const std::vector<Field> kFields{{"a"}, {"b"}, {"c"}};
    const Compiled compiled = compile(text, kFields, Wanted::Value, 0, Columns::Typed);
    if (!compiled.ok())
        return describe(compiled.error);
    std::vector<Value> row(kFields.size());
    for (std::size_t i = 0; i < cells.size(); ++i)
        row[i] = cells[i] ? Value::ofText(*cells[i]) : Value{};
    RowEvaluator evaluator(*compiled.program);
    const Value value = evaluator.evaluate(row);
    if (evaluator.hasFailed())
        return evaluator.failure();
    if (value.type == Type::Boolean)
        return value.boolean ? "true" : "false";
    if (value.type == Type::Real)
        return std::to_string(value.real);
    return value.isNull() ? "null" : std::string(value.text);
}

struct Case {
    const char* text;
    std::vector<Cell> cells;
    const char* answer;
};

void expectAnswers(const std::vector<Case>& cases) {
    for (const Case& one : cases)
        EXPECT_EQ(answer(one.text, one.cells), one.answer) << one.text << " of " << one.cells.front().value_or("null");
}

TEST(Cells, AreNumbersBesideNumbers) {
    expectAnswers({{"a > 5", {"9.5"}, "true"},
                   {"a > 5", {"10"}, "true"},
                   {"10 >= a", {"9"}, "true"},
                   {"a == 10", {"10.0"}, "true"},
                   {"a == 7", {"007"}, "true"},
                   {"a > 5", {"abc"}, "null"},
                   {"a <= 5", {" 5"}, "null"},
                   {"a < 5", {""}, "null"},
                   {"a == 5", {"abc"}, "false"},
                   {"a != 5", {""}, "true"},
                   {"a != 5", {std::nullopt}, "null"},
                   {"not (a > 5)", {"abc"}, "null"},
                   {"a > 1 / 0", {"5"}, "null"},
                   {"a == 9007199254740993", {"9007199254740992"}, "false"},
                   {"a > 9223372036854775807", {"9223372036854775808"}, "true"},
                   {"a == 9223372036854775807", {"9223372036854775808"}, "false"},
                   {"a > length(b)", {"10", "abc"}, "true"},
                   {"a in (5, 'x')", {"5.0"}, "true"},
                   {"a in (5, 'x')", {"x"}, "true"},
                   {"a in (5, '7')", {"7.0"}, "false"},
                   {"a in (5, null)", {"abc"}, "null"},
                   {"not a in (5, 6)", {"abc"}, "true"},
                   {"a in (true, 1)", {"true"}, "true"},
                   {"1 in (a, b)", {"x", "1.0"}, "true"},
                   {"a between 5 and 10", {"9.5"}, "true"},
                   {"a between 5 and 10", {"x"}, "null"},
                   {"max(a, 10)", {"9"}, "10.000000"},
                   {"max(a, 10)", {"x"}, "null"},
                   {"nullif(a, 5)", {"5.0"}, "null"},
                   {"nullif(a, 5)", {"x"}, "x"}});
}

TEST(Cells, AreWhatBothAreBesideEachOther) {
    expectAnswers({{"a < b", {"9", "10"}, "true"},
                   {"a == b", {"1.0", "1.00"}, "true"},
                   {"a == b", {"007", "7"}, "false"},
                   {"a < b", {"2024-02-29T01:00+02:00", "2024-02-29"}, "true"},
                   {"a == b", {"2024-02-29T02:00+02:00", "2024-02-29"}, "true"},
                   {"a < b", {"10", "9x"}, "true"},
                   {"a < b", {"9", std::nullopt}, "null"},
                   {"a == b", {"123456789012345678901", "123456789012345678902"}, "false"},
                   {"a < b", {"-123456789012345678901", "-99999999999999999999"}, "true"},
                   {"b between a and c", {"9", "10", "11"}, "true"},
                   {"min(a, b, c)", {"10", "9", "9.5"}, "9"},
                   {"min(a, b, c)", {"10", "9", "x"}, "10"},
                   {"max(a, b)", {"2024-01-01T01:00+02:00", "2024-01-01"}, "2024-01-01"}});
}

TEST(Cells, AreTextsBesideTextsAndDatesBesideDates) {
    expectAnswers({{"a > '5'", {"10"}, "false"},
                   {"a == '5'", {"5.0"}, "false"},
                   {"compare(a, b) < 0", {"10", "9"}, "true"},
                   {"a < today()", {"1969-12-31"}, "true"},
                   {"a != today()", {"x"}, "null"},
                   {"a in ('5', '6')", {"5.0"}, "false"},
                   {"a == isblank(b)", {"false", "x"}, "true"},
                   {"trim(a) > 5", {"10"}, "false"}});
}

TEST(Cells, ARemarkIsMadeWhereTextsAreOrderedAllTheSame) {
    const auto remark = [](std::string_view text) {
        const Compiled compiled = compile(text, std::vector<Field>{{"a"}, {"b"}}, Wanted::Value, 0, Columns::Typed);
        return compiled.remark ? describe(*compiled.remark) : describe(compiled.error);
    };
    const std::string quoted = "this compares texts, where '9' comes after '10'; to compare numbers write 10 without "
                               "quotes";
    EXPECT_EQ(remark("a > '10'"), "line 1, column 3: " + quoted);
    EXPECT_EQ(remark("a between '10' and b"), "line 1, column 3: " + quoted);
    EXPECT_EQ(remark("trim(a) == 10"), "line 1, column 9: this compares texts, where '5.0' differs from '5'; to "
                                       "compare numbers write tonumber(...)");
    for (const char* const text : {"a > 10", "a == '10'", "a <= b", "a in (1, '2')", "a > 'b'", "min(a, 5)"})
        EXPECT_EQ(compile(text, std::vector<Field>{{"a"}, {"b"}}, Wanted::Value, 0, Columns::Typed).remark,
                  std::nullopt)
            << text;
}

} // namespace
} // namespace tavix::expression
