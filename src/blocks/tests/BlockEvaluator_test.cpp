#include "blocks/BlockEvaluator.h"
#include "expression/tests/RowJudge.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::expression {
namespace {

using Cell = std::optional<std::string_view>;

/// Rows of texts, in memory that ends with the last byte, so that a sanitizer detects reads past it.
class TextBlock {
  public:
    explicit TextBlock(std::vector<Cell> cells) : m_cells(std::move(cells)) {
        std::string bytes;
        for (const Cell& cell : m_cells) {
            bytes += cell.value_or("");
            m_ends.push_back(static_cast<std::uint32_t>(bytes.size()));
            m_nulls.push_back(cell ? 0 : 1);
            m_counts.push_back(m_counts.size() % 5);
        }
        m_bytes = std::make_unique<char[]>(bytes.size());
        std::ranges::copy(bytes, m_bytes.get());
        m_columns = {{{m_bytes.get(), bytes.size()}, m_ends, {}, m_nulls}, {{}, {}, m_counts, {}}};
        if (std::ranges::count(m_nulls, 1) == 0)
            m_columns.front().nulls = {};
    }

    /// Each row by itself has to say what the block does.
    void expectAgreement(std::string_view text) const {
        const std::vector<Field> fields{{"Value", Type::Text}, {"Count", Type::Integer}};
        const Compiled compiled = compile(text, fields, Wanted::Condition);
        ASSERT_TRUE(compiled.ok()) << describe(compiled.error) << '\n' << text;
        RowJudge one(*compiled.program);
        std::vector<std::uint32_t> expected;
        for (std::uint32_t row = 0; row < m_cells.size(); ++row) {
            const std::vector<Value> cells{m_cells[row] ? Value::ofText(*m_cells[row]) : Value{},
                                           Value::ofInteger(static_cast<std::int64_t>(m_counts[row]))};
            if (one.judge(cells) == Verdict::Passes)
                expected.push_back(row);
        }
        BlockEvaluator block(*compiled.program);
        const auto passing = block.passing({m_cells.size(), m_columns});
        ASSERT_EQ(std::vector<std::uint32_t>(passing.begin(), passing.end()), expected) << text;
    }

  private:
    std::vector<Cell> m_cells;
    std::unique_ptr<char[]> m_bytes;
    std::vector<std::uint32_t> m_ends;
    std::vector<std::uint8_t> m_nulls;
    std::vector<std::uint64_t> m_counts;
    std::vector<BlockColumn> m_columns;
};

using namespace std::string_view_literals;

/// Texts around the steps of comparing and searching, eight and sixteen bytes, and with zeros after the end.
const std::vector<Cell> kAscii{"",
                               "k",
                               "k\0"sv,
                               "kkkk5kk",
                               "kkkk5kkk",
                               "kkkk5kkk1",
                               "kkkk5kkk\0"sv,
                               "kkkk5kkk2",
                               "kkkk5kk\0"sv,
                               "Kkkk5kkk",
                               "1kkk5kkk1",
                               "a-b",
                               "-",
                               "--",
                               "aaaaaaaaaaaaaaaa-",
                               "aaaaaaaaaaaaaaa-b",
                               "kkkk5kkk-kkkk5kkk-kkkk5kkk-kkkk5kkk-kkkk5kkk",
                               "kkkk5kkk-aaaa5kkk-kkkk5kkk-kkkk5kkk-kkkk5kkk",
                               "b"};

std::vector<TextBlock> blocks() {
    std::vector<Cell> withNulls = kAscii;
    withNulls.insert(withNulls.begin() + 3, {std::nullopt, std::nullopt});
    withNulls.push_back(std::nullopt);
    std::vector<Cell> mixed = withNulls;
    mixed.insert(mixed.begin() + 6, {"é", "éééé-é", "kkkk5kké", "\xC3", "é\xF8-", "🙂-k", "Äkkk5kkk"});
    std::vector<TextBlock> made;
    made.emplace_back(kAscii);
    made.emplace_back(withNulls);
    made.emplace_back(mixed);
    made.emplace_back(std::vector<Cell>(5));             // null throughout
    made.emplace_back(std::vector<Cell>(3, Cell("")));   // without a byte
    made.emplace_back(std::vector<Cell>(70, Cell("k"))); // of one size
    made.emplace_back(std::vector<Cell>());
    return made;
}

std::string quoted(std::string_view text) {
    return fmt::format("'{}'", text);
}

TEST(BlockEvaluator, TextsAreComparedAndFoundAsByRow) {
    const std::vector<std::string_view> texts{"",         "k",         "kkkk5kk",
                                              "kkkk5kkk", "kkkk5kkk1", "kkkk5kkk2",
                                              "-",        "a-b",       "kkkk5kkk-kkkk5kkk-kkkk5kkk-kkkk5kkk-kkkk5kkk",
                                              "é",        "kkkk5kké",  "5k"};
    const std::vector<std::string_view> shapes{
        "{0} == {1}",
        "{0} != {1}",
        "{0} < {1}",
        "{0} >= {1}",
        "{0} >= {1} and {0} < {2}",
        "not ({0} > {1} or {0} <= {2})",
        "inlist({0},{1},{2})",
        "not inlist({0},{1},{2},'b','x1','x2','x3','x4','x5','x6')",
        "instr({0},{1}) > 2",
        "instr({0},{1},2) > 2",
        "instr({0},{1}) == instr({0},{2},`Count`)",
        "contains({0},{1})",
        "not contains({0},{1})",
        "nullif({0},{1}) == {2}",
        "coalesce(nullif({0},{1}),{2}) != {1}",
    };
    const std::vector<std::string_view> subjects{"`Value`", "lower(`Value`)", "right(`Value`,8)",
                                                 "substring(`Value`,`Count`)", "concat(`Value`,'')"};
    const std::vector<TextBlock> all = blocks();
    for (const std::string_view shape : shapes) {
        for (std::size_t i = 0; i < texts.size(); ++i) {
            for (const std::string_view subject : subjects) {
                const std::string text =
                    fmt::format(fmt::runtime(shape), subject, quoted(texts[i]), quoted(texts[(i + 5) % texts.size()]));
                for (const TextBlock& block : all)
                    ASSERT_NO_FATAL_FAILURE(block.expectAgreement(text));
            }
        }
    }
}

TEST(BlockEvaluator, NumbersAndCutsAreThoseOfTheRows) {
    const std::vector<TextBlock> all = blocks();
    for (const std::string_view text : {
             "inlist(length(`Value`),0,8,9)",
             "inlist(length(`Value`),1,2,3,4,5,6,7,8,9,10,11)",
             "not inlist(length(`Value`),1,`Count`)",
             "inlist(length(`Value`),1,null)",
             "not inlist(tonumber(substring(`Value`,9)),1,2.5)",
             "inlist(todate(`Value`),todate('2024-02-29'))",
             "max(length(`Value`),`Count`,2) == `Count`",
             "min(`Count`,3,length(`Value`)) < 2",
             "max(tonumber(substring(`Value`,9)),`Count`) > 1.5",
             "left(`Value`,instr(`Value`,'-')-1) == 'kkkk5kkk'",
             "left(`Value`,`Count`) != right(`Value`,`Count`)",
             "substring(`Value`,instr(`Value`,'-')+1) == 'b'",
             "substring(`Value`,`Count`-2,`Count`) < 'k'",
             "substring(`Value`,3,`Count`) == 'kk'",
             "substring(`Value`,9223372036854775807 - `Count`) == ''",
             "right(`Value`,-9223372036854775807 - `Count` % 2) == ''",
             "if left(`Value`,`Count`) == 'k' then return inlist(`Count`,1,3) else return `Value` > 'a'",
         }) {
        for (const TextBlock& block : all)
            ASSERT_NO_FATAL_FAILURE(block.expectAgreement(text));
    }
}

} // namespace
} // namespace tavix::expression
