#include "blocks/BlockEvaluator.h"
#include "blocks/BlockValues.h"
#include "blocks/tests/CountedMemory.h"
#include "expression/tests/RowJudge.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {
namespace {

using testing::CountedMemory;

const std::vector<Field> kFields{{"Value", Type::Text}, {"Count", Type::Integer}};
constexpr std::size_t kMegabyte = std::size_t{1} << 20;

std::string repeated(std::string_view part, std::size_t count) {
    std::string out;
    for (std::size_t i = 0; i < count; ++i)
        out += part;
    return out;
}

Program compiled(const std::string& text, Wanted wanted = Wanted::Condition) {
    const Compiled made = compile(text, kFields, wanted);
    EXPECT_TRUE(made.ok()) << describe(made.error);
    return *made.program;
}

/// A block of rows with these values, each with the count 1.
class Rows {
  public:
    explicit Rows(const std::vector<std::string>& values) : m_counts(values.size(), 1) {
        for (const std::string& value : values) {
            m_bytes += value;
            m_ends.push_back(static_cast<std::uint32_t>(m_bytes.size()));
        }
        m_columns = {{m_bytes, m_ends, {}, {}}, {{}, {}, m_counts, {}}};
    }
    [[nodiscard]] Block block() const { return {m_counts.size(), m_columns}; }

  private:
    std::string m_bytes;
    std::vector<std::uint32_t> m_ends;
    std::vector<std::uint64_t> m_counts;
    std::vector<BlockColumn> m_columns;
};

/// Makes some 16 MB of the value x, and 64 KB of any other letter.
const std::string kLongOfX = "replace(rpad(`Value`, 65536, `Value`), 'x', '" + std::string(255, 'y') + "')";

TEST(Bounds, WhatIsConstantTakesMemoryByTheLengthOfTheExpression) {
    const std::string tooLong = "the constant texts of the expression are too long from here on";
    const std::string large = "replace(rpad('x',65536,'x'),'x',rpad('x',256))";
    for (const std::string& text : {"`Value` == " + large, "inlist(`Value`" + repeated("," + large, 100) + ")",
                                    "inlist(`Value`" + repeated(",rpad('x',65536)", 60'000) + ")"}) {
        const CountedMemory memory;
        EXPECT_EQ(compile(text, kFields, Wanted::Condition).error.message, tooLong);
        EXPECT_LT(memory.peak(), 64 * kMegabyte + text.size() * 200) << text.size();
    }
    EXPECT_TRUE(compile("`Value` == rpad('x', 65536)", kFields, Wanted::Condition).ok());
    EXPECT_TRUE(compile("inlist(`Value`" + repeated(",upper('abc')", 10'000) + ")", kFields, Wanted::Condition).ok());
}

TEST(Bounds, ManyPatternsTakeNoMoreThanAFew) {
    std::string distinct = "false";
    for (int i = 0; i < 3000; ++i)
        distinct += " or matches(`Value`, '[a-z]{1,40}" + std::to_string(i) + "(x|yz)*')";
    const CountedMemory memory;
    EXPECT_EQ(compile(distinct, kFields, Wanted::Condition).error.message,
              "an expression has at most 500 different regular expressions");
    EXPECT_TRUE(
        compile("false" + repeated(" or matches(`Value`, '[a-z]{1,40}')", 3000), kFields, Wanted::Condition).ok());
    EXPECT_LT(memory.peak(), 128 * kMegabyte);
}

TEST(Bounds, WithoutMemoryThereIsASentence) {
    const std::string text = "true" + repeated(" and `Count` + 1 > 0", 20'000);
    Compiled made;
    {
        const CountedMemory memory(8 * kMegabyte);
        made = compile(text, kFields, Wanted::Condition);
    }
    EXPECT_FALSE(made.ok());
    EXPECT_EQ(made.error.message, "there is not enough memory for this expression");
}

TEST(Bounds, ManyOperatorsOverABlockTakeBoundedMemory) {
    const Rows rows(std::vector<std::string>(4096, "a"));
    BlockEvaluator evaluator(compiled("true" + repeated(" and `Count` + 1 > 0", 10'000)));
    const CountedMemory memory;
    EXPECT_EQ(evaluator.passing(rows.block()).size(), 4096U);
    EXPECT_LT(memory.peak(), 128 * kMegabyte);
}

TEST(Bounds, ARowIsAnsweredAmongOthersAsAlone) {
    // 1 MB for each row, so more than all rows of a block may take together.
    const std::string text = "length(replace(rpad(`Value`, 65536, `Value`), 'a', '0123456789abcdef')) > 0";
    const Rows rows(std::vector<std::string>(300, "a"));
    BlockEvaluator evaluator(compiled(text));
    const CountedMemory memory;
    EXPECT_EQ(evaluator.passing(rows.block()).size(), 300U);
    EXPECT_EQ(evaluator.failures().count, 0U);
    EXPECT_LT(memory.peak(), 128 * kMegabyte);
}

TEST(Bounds, OnlyTheRowThatMakesTooMuchFails) {
    const Program program = compiled("not inlist('q'" + repeated(", " + kLongOfX, 5) + ")");
    std::vector<std::string> values(40, "a");
    values[17] = "x";
    for (const bool isAlone : {false, true}) {
        const Rows rows(isAlone ? std::vector<std::string>{"x"} : values);
        BlockEvaluator evaluator(program);
        EXPECT_EQ(evaluator.passing(rows.block()).size(), isAlone ? 0U : 39U);
        EXPECT_EQ(evaluator.failures().count, 1U);
        EXPECT_EQ(evaluator.failures().firstRow, isAlone ? 0U : 17U);
        EXPECT_EQ(evaluator.failures().reason, "the texts of a row take too much memory");
    }
    const std::vector<Value> row{Value::ofText("x"), Value::ofInteger(1)};
    EXPECT_EQ(RowJudge(program).judge(row), Verdict::Error);
}

TEST(Bounds, ValuesOfLongTextsComeInPieces) {
    const Rows rows({"a", "x", "x", "x", "b"});
    BlockValues values(compiled("return length(" + kLongOfX + ")", Wanted::Value));
    std::vector<std::int64_t> lengths;
    std::size_t pieces = 0;
    values.evaluate(rows.block(), [&](const ValuePiece& piece) {
        ++pieces;
        for (std::uint32_t row = 0; row < piece.rows; ++row)
            lengths.push_back(piece.values.at(row).integer);
    });
    EXPECT_EQ(lengths, (std::vector<std::int64_t>{65536, 65536 * 255, 65536 * 255, 65536 * 255, 65536}));
    EXPECT_GT(pieces, 1U);
}

TEST(Bounds, ABlockOfLongTextsCanBeStoppedWithin) {
    const Rows rows(std::vector<std::string>(4096, "x"));
    BlockEvaluator evaluator(compiled("length(" + kLongOfX + ") > 0"));
    int asked = 0;
    const auto passing = evaluator.passing(rows.block(), [&] { return ++asked < 3; });
    EXPECT_TRUE(evaluator.wasStopped());
    EXPECT_EQ(asked, 3);
    EXPECT_LT(passing.size(), 20U);
    EXPECT_EQ(evaluator.passing(Rows({"a", "x"}).block()).size(), 2U) << "the next block is evaluated as any";
    EXPECT_FALSE(evaluator.wasStopped());
}

} // namespace
} // namespace tavix::expression
