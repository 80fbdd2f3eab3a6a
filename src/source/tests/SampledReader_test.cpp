#include "source/SampledReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tavix::source {
namespace {

using ::testing::ElementsAre;

/// Rows whose one cell is their number, in blocks of a size.
class Numbers final : public RowReader {
  public:
    Numbers(int rows, int blockRows) : m_blockRows(blockRows) {
        for (int i = 1; i <= rows; ++i)
            m_texts.push_back(std::to_string(i));
    }
    [[nodiscard]] std::span<const std::string> columnNames() const override { return m_names; }
    [[nodiscard]] Result<bool> read(RowBlock& block) override {
        block.columns.resize(1);
        block.columns[0].clear();
        for (int i = 0; i < m_blockRows && m_next < m_texts.size(); ++i, ++m_next)
            block.columns[0].push_back(
                {m_texts[m_next].data(), static_cast<std::uint32_t>(m_texts[m_next].size()), false});
        block.rows = block.columns[0].size();
        return block.rows > 0;
    }
    [[nodiscard]] std::int64_t position() const override { return 0; }
    [[nodiscard]] std::int64_t total() const override { return 0; }
    [[nodiscard]] std::span<const DamagedRow> damagedRows() const override { return {}; }
    [[nodiscard]] std::int64_t damagedRowCount() const override { return 0; }

  private:
    int m_blockRows;
    std::vector<std::string> m_names{"n"};
    std::vector<std::string> m_texts;
    std::size_t m_next = 0;
};

std::vector<std::int64_t> taken(const Sample& sample, int rows, int blockRows) {
    SampledReader reader(std::make_unique<Numbers>(rows, blockRows), sample);
    std::vector<std::int64_t> records;
    RowBlock block;
    while (*reader.read(block)) {
        EXPECT_EQ(block.records.size(), block.rows);
        for (std::size_t r = 0; r < block.rows; ++r) {
            EXPECT_EQ(std::string(block.columns[0][r].data, block.columns[0][r].size),
                      std::to_string(block.records[r]));
            records.push_back(block.records[r]);
        }
    }
    EXPECT_EQ(reader.rowsSeen(), rows);
    return records;
}

TEST(SampledReader, TakesTheRowsThatTheSampleNames) {
    EXPECT_THAT(taken({Sample::Kind::First, 3, 0, 0}, 10, 2), ElementsAre(1, 2, 3));
    EXPECT_THAT(taken({Sample::Kind::First, 30, 0, 0}, 2, 7), ElementsAre(1, 2));
    EXPECT_THAT(taken({Sample::Kind::Every, 4, 0, 0}, 10, 3), ElementsAre(1, 5, 9));
    EXPECT_EQ(taken({Sample::Kind::All, 0, 0, 0}, 10, 3).size(), 10U);
    EXPECT_EQ((Sample{Sample::Kind::Every, 22, 0, 0}.text()), "every 22nd row");
    EXPECT_EQ((Sample{Sample::Kind::Every, 112, 0, 0}.text()), "every 112th row");
    EXPECT_EQ((Sample{Sample::Kind::Random, 0, 2.5, 7}.text()), "a random 2.5 % of the rows, seed 7");
}

TEST(SampledReader, ARandomShareDependsOnTheSeedAloneAndIsOfItsSize) {
    constexpr int kRows = 40'000;
    const Sample tenth{Sample::Kind::Random, 0, 10, 1};
    const auto rows = taken(tenth, kRows, 1000);
    EXPECT_EQ(rows, taken(tenth, kRows, 777)) << "whatever the blocks";
    // Within five standard deviations of the binomial distribution.
    EXPECT_NEAR(static_cast<double>(rows.size()), 4000, 300);
    const auto others = taken({Sample::Kind::Random, 0, 10, 2}, kRows, 1000);
    EXPECT_NEAR(static_cast<double>(others.size()), 4000, 300);
    EXPECT_NE(rows, others);
    EXPECT_EQ(taken({Sample::Kind::Random, 0, 100, 3}, 500, 50).size(), 500U);
    EXPECT_TRUE(taken({Sample::Kind::Random, 0, 0, 3}, 500, 50).empty());
}

} // namespace
} // namespace tavix::source
