#include "blocks/BlockEvaluator.h"
#include "blocks/BlockValues.h"
#include "blocks/tests/Reference.h"
#include "expression/Conversion.h"
#include "expression/RowEvaluator.h"
#include "expression/tests/RowJudge.h"

#include <gtest/gtest.h>

namespace tavix::expression {
namespace {

constexpr std::uint32_t kSeed = 20261121;

const std::vector<Field> kFields{{"Value", Type::Text}, {"Other", Type::Text}, {"Count", Type::Integer}};

/// The same rows in the three forms in which they are evaluated.
class Rows {
  public:
    Rows(reference::Generator& generator, std::size_t count, bool onlyAscii, bool isLong, bool isUniform) {
        m_parts = isLong ? 20 : 1;
        for (std::size_t i = 0; i < count; ++i) {
            reference::Row row;
            row.value = addText(generator, onlyAscii, 0);
            row.other = addText(generator, onlyAscii, 1);
            m_counts.push_back(isUniform && i > 0 ? m_counts.front() : generator.below(8));
            row.count = static_cast<std::int64_t>(m_counts.back());
            m_rows.push_back(std::move(row));
        }
        for (std::size_t i = 0; i < 2; ++i)
            m_columns.push_back({m_bytes[i], m_ends[i], {}, m_nulls[i]});
        // Of the same number throughout, one is enough.
        const std::span<const std::uint64_t> counts(m_counts);
        m_columns.push_back({{}, {}, isUniform ? counts.first(1) : counts, {}, isUniform});
    }

    [[nodiscard]] const std::vector<reference::Row>& rows() const { return m_rows; }
    [[nodiscard]] Block block() const { return {m_rows.size(), m_columns}; }
    [[nodiscard]] std::vector<Value> cells(std::size_t row) const {
        std::vector<Value> cells;
        for (std::size_t i = 0; i < 2; ++i) {
            const std::size_t begin = row == 0 ? 0 : m_ends[i][row - 1];
            const std::string_view text = std::string_view(m_bytes[i]).substr(begin, m_ends[i][row] - begin);
            cells.push_back(m_nulls[i][row] != 0 ? Value{} : Value::ofText(text));
        }
        cells.push_back(Value::ofInteger(static_cast<std::int64_t>(m_counts[row])));
        return cells;
    }

  private:
    reference::Value addText(reference::Generator& generator, bool onlyAscii, std::size_t column) {
        const bool isNull = generator.below(10) == 0;
        std::string text;
        for (int i = 0; !isNull && i < m_parts; ++i)
            text += generator.cell(onlyAscii);
        m_bytes[column] += text;
        m_ends[column].push_back(static_cast<std::uint32_t>(m_bytes[column].size()));
        m_nulls[column].push_back(isNull ? 1 : 0);
        return isNull ? reference::Value() : reference::Value(reference::decode(text));
    }

    int m_parts = 1; ///< of each text
    std::vector<reference::Row> m_rows;
    std::array<std::string, 2> m_bytes;
    std::array<std::vector<std::uint32_t>, 2> m_ends;
    std::array<std::vector<std::uint8_t>, 2> m_nulls;
    std::vector<std::uint64_t> m_counts;
    std::vector<BlockColumn> m_columns;
};

/// Texts as in distributions, and cells of tables.
class RandomExpressions : public testing::TestWithParam<Columns> {};

INSTANTIATE_TEST_SUITE_P(AllColumns, RandomExpressions, testing::Values(Columns::Texts, Columns::Typed),
                         [](const auto& one) { return one.param == Columns::Texts ? "Texts" : "Typed"; });

TEST_P(RandomExpressions, BothEvaluatorsSayWhatTheObviousOneSays) {
    constexpr int kExpressions = 4000;
    constexpr std::size_t kRows = 60;
    reference::Generator generator(kSeed, GetParam());
    std::vector<Rows> blocks;
    for (int i = 0; i < 8; ++i)
        blocks.emplace_back(generator, kRows, i % 2 == 0, i >= 6, i == 2 || i == 5);
    std::size_t passed = 0;
    std::size_t failed = 0;
    for (int i = 0; i < kExpressions; ++i) {
        const reference::Expression expression = generator.program(1 + i % 4);
        const Compiled compiled = compile(expression.text, kFields, Wanted::Condition, thisMoment(), GetParam());
        ASSERT_TRUE(compiled.ok()) << describe(compiled.error) << "\n" << expression.text;
        RowJudge rowEvaluator(*compiled.program);
        BlockEvaluator blockEvaluator(*compiled.program);
        const IntegerRange range = compiled.program->passingRange(2);
        for (const Rows& rows : {std::cref(blocks[generator.below(blocks.size())]), std::cref(blocks[0])}) {
            std::vector<bool> inBlock(kRows);
            const Block block = rows.block();
            for (const std::uint32_t row : blockEvaluator.passing(block))
                inBlock[row] = true;
            for (std::size_t r = 0; r < kRows; ++r) {
                const reference::Row row = rows.rows()[r];
                const bool expected = expression.meaning(row) == reference::Value(true);
                const Verdict verdict = rowEvaluator.judge(rows.cells(r));
                if (row.hasFailed || verdict == Verdict::Error) {
                    ++failed;
                    ASSERT_FALSE(verdict == Verdict::Error && inBlock[r]) << expression.text;
                    ASSERT_TRUE(row.hasFailed) << rowEvaluator.failure() << "\n" << expression.text;
                    continue;
                }
                passed += expected ? 1 : 0;
                const auto told = [&] {
                    const std::vector<Value> cells = rows.cells(r);
                    return expression.text + "\nValue " + std::string(cells[0].text) + " Other " +
                           std::string(cells[1].text) + " Count " + std::to_string(cells[2].integer);
                };
                ASSERT_EQ(verdict == Verdict::Passes, expected) << told();
                ASSERT_EQ(inBlock[r], expected) << told();
                const std::int64_t count = std::get<std::int64_t>(row.count);
                ASSERT_TRUE(!expected || (count >= range.low && count <= range.high)) << told();
            }
        }
    }
    // Random conditions that were always false would prove little.
    EXPECT_GT(passed, kExpressions * kRows / 5);
    EXPECT_LT(failed, kExpressions * kRows / 50);
}

TEST_P(RandomExpressions, ABlockHasTheValuesOfItsRows) {
    constexpr std::size_t kRows = 60;
    reference::Generator generator(kSeed + 1, GetParam());
    std::vector<Rows> blocks;
    for (int i = 0; i < 4; ++i)
        blocks.emplace_back(generator, kRows, i % 2 == 0, i == 3, i == 1);
    std::size_t compared = 0;
    for (int i = 0; i < 1500; ++i) {
        const auto value = [&, kind = generator.below(3)] {
            const int depth = 1 + i % 3;
            return (kind == 0   ? generator.text(depth)
                    : kind == 1 ? generator.integer(depth)
                                : generator.real(depth))
                .text;
        };
        const std::string text = generator.below(2) == 0 ? "return " + value()
                                                         : "if " + generator.condition(1).text + " then return " +
                                                               value() + " else return " + value();
        const Compiled compiled = compile(text, kFields, Wanted::Value, thisMoment(), GetParam());
        ASSERT_TRUE(compiled.ok()) << describe(compiled.error) << "\n" << text;
        RowEvaluator rowEvaluator(*compiled.program);
        BlockValues blockValues(*compiled.program);
        const Rows& rows = blocks[generator.below(blocks.size())];
        blockValues.evaluate(rows.block(), [&](const ValuePiece& piece) {
            ASSERT_EQ(piece.rows, kRows);
            for (std::uint32_t r = 0; r < kRows; ++r) {
                const Value expected = rowEvaluator.evaluate(rows.cells(r));
                if (rowEvaluator.hasFailed() || piece.isFailed(r))
                    continue;
                ++compared;
                const Value found = piece.values.at(r);
                ASSERT_EQ(found.isNull(), expected.isNull()) << text << "\nrow " << r;
                ASSERT_TRUE(expected.isNull() || compareValues(found, expected) == 0) << text << "\nrow " << r;
            }
        });
    }
    EXPECT_GT(compared, 80'000U);
}

} // namespace
} // namespace tavix::expression
