#include "base/GenException.h"
#include "support/RowsText.h"
#include "support/RunScript.h"
#include "support/SampleViewer.h"
#include "tabs/FreqDistRows.h"
#include "tabs/PatternDistRows.h"

#include <gmock/gmock.h>

#include <limits>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

// Rows "v0", "v1", ... with the given counts, in the layout of values or, with a rank, of patterns.
class Counts final : public ProfileCursor {
  public:
    explicit Counts(std::vector<std::int64_t> counts) : m_counts(std::move(counts)) {}

    bool next() override {
        if (m_row == failsAt)
            throw GenException("disk gone");
        return static_cast<std::size_t>(++m_row) < m_counts.size();
    }
    int getColumnCount() const override { return m_hasRank ? 3 : 2; }
    KvbString getColumnName(int) const override { return {}; }
    KvbString getColumnValue(int column) const override {
        return column == (m_hasRank ? 1 : 0) ? KvbString("v" + std::to_string(m_row)) : KvbString();
    }
    int getColumnInt(int) const override { return 0; }
    std::int64_t getColumnInt64(int column) const override {
        return column == (m_hasRank ? 2 : 1) ? m_counts.at(static_cast<std::size_t>(m_row)) : 0;
    }
    double getColumnDouble(int column) const override { return static_cast<double>(getColumnInt64(column)); }
    bool isColumnNull(int) const override { return false; }
    bool isColumnValid(int) const override { return true; }

    Counts& withRank() {
        m_hasRank = true;
        return *this;
    }
    int rowsRead() const { return m_row + 1; }
    int failsAt = -2;

  private:
    std::vector<std::int64_t> m_counts;
    int m_row = -1;
    bool m_hasRank = false;
};

std::string toText(const Distribution& distribution) {
    std::string text;
    for (const Distribution::Entry& entry : distribution.entries)
        text += fmt::format("{}={} ", entry.value.view(), entry.count);
    return text + fmt::format("other {} of {}", distribution.other, distribution.total);
}

TEST(Distribution, TheTwoRulesForOtherDiffer) {
    const std::vector<std::int64_t> counts = {50, 30, 15, 5};
    const auto values = [&](std::int64_t limit, std::optional<std::int64_t> total) {
        Counts rows(counts);
        return toText(readValueDistribution(rows, limit, total));
    };
    // For values, the known total minus the shown counts, whatever the other rows are.
    EXPECT_EQ("v0=50 v1=30 other 20 of 100", values(2, 100));
    EXPECT_EQ("v0=50 v1=30 other 920 of 1000", values(2, 1000));
    EXPECT_EQ("v0=50 v1=30 v2=15 v3=5 other 0 of 100", values(4, 100));
    EXPECT_EQ("v0=50 v1=30 v2=15 v3=5 other 1 of 101", values(100, 101));
    EXPECT_EQ("v0=50 v1=30 other 0 of 60", values(2, 60));
    // With a filter, the total is the sum of the rows.
    EXPECT_EQ("v0=50 other 50 of 100", values(1, {}));

    const auto patterns = [&](std::int64_t limit) {
        Counts rows(counts);
        return toText(readPatternDistribution(rows.withRank(), limit));
    };
    EXPECT_EQ("v0=50 v1=30 other 20 of 100", patterns(2));
    EXPECT_EQ("v0=50 v1=30 v2=15 v3=5 other 0 of 100", patterns(4));
}

TEST(Distribution, TheWalkStopsAtTheLimitUnlessAllRowsAreToBeSummed) {
    const std::vector<std::int64_t> many(5000, 1);
    Counts known(many);
    (void)readValueDistribution(known, 100, 5000);
    EXPECT_EQ(100, known.rowsRead());
    Counts filtered(many);
    EXPECT_EQ(4900, readValueDistribution(filtered, 100, {}).other);
    EXPECT_EQ(5001, filtered.rowsRead());
    Counts patterns(many);
    EXPECT_EQ(4900, readPatternDistribution(patterns.withRank(), 100).other);
}

TEST(Distribution, DamagedCountsDoNotOverflow) {
    constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
    Counts rows({kMost, kMost, 7});
    const Distribution distribution = readPatternDistribution(rows.withRank(), 1);
    EXPECT_EQ(kMost, distribution.total);
    Counts negative({-5, 3});
    EXPECT_EQ("v0=-5 other 3 of -2", toText(readPatternDistribution(negative.withRank(), 1)));
}

TEST(Distribution, AFailureInTheMiddleIsPassedOn) {
    Counts rows({5, 4, 3});
    rows.failsAt = 1;
    EXPECT_THROW((void)readValueDistribution(rows, 10, {}), GenException);
}

using FreqDist = testing::SampleViewer;

TEST_F(FreqDist, ShowsValuesWithTheirShareAndNullApartFromText) {
    FreqDistRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/name"), {}, 100));
    EXPECT_EQ("Value:150|>Count:150|>Percentage{of 1,000 records}:150", headingsOf(rows));
    EXPECT_THAT(linesOf(rows),
                ElementsAre("Ada|>400|>40.00[0.40]", "Grace|>302|>30.20[0.30]", "(null value)~|>228|>22.80[0.23]",
                            "|>50|>5.00[0.05]", "   |>20|>2.00[0.02]"));
    EXPECT_TRUE(rows.GetValue(2).isNull());
    EXPECT_EQ(KvbString(""), rows.GetValue(3));
    EXPECT_EQ(-1, rows.GetOtherRow());
    EXPECT_EQ("", rows.GetEmptyText());
}

TEST_F(FreqDist, TheRestIsOneRowAndAllPercentagesSumToOneHundred) {
    FreqDistRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/city"), {}, 100));
    ASSERT_EQ(101, rows.GetRowCount());
    // 150 cities with 150, 149, ... 1 rows, and 7 nulls, which come before "City 144" that has as many: 11332 in all.
    EXPECT_EQ("City 1|>150|>1.32[0.01]", lineOf(rows, 0));
    EXPECT_EQ("Other (51 values)|>1,282|>11.31", lineOf(rows, 100));
    EXPECT_TRUE(rows.IsOther(100));
    EXPECT_FALSE(rows.IsOther(99));
    EXPECT_TRUE(rows.GetValue(100).isNull());
    double sum = 0;
    for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
        sum += std::stod(rows.GetCell(2, row).text);
    EXPECT_NEAR(100, sum, 0.51);

    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/city"), {}, 1));
    EXPECT_THAT(linesOf(rows), ElementsAre("City 1|>150|>1.32[0.01]", "Other (150 values)|>11,182|>98.68"));
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/city"), {}, 151));
    EXPECT_EQ(-1, rows.GetOtherRow());
}

/// Painted text of "Other" and the two columns that are shown on demand: the other share, the cumulative one.
std::vector<std::string> sharesOf(const DistributionRows& rows) {
    const int count = rows.GetColumnCount();
    std::vector<std::string> lines = {rows.GetColumn(count - 2).heading + " " + rows.GetColumn(count - 2).mark + ", " +
                                      rows.GetColumn(count - 1).heading + " " + rows.GetColumn(count - 1).mark};
    for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
        lines.push_back(shownText(rows.GetCell(0, row)) + "|" + rows.GetCell(count - 2, row).text + "|" +
                        rows.GetCell(count - 1, row).text);
    return lines;
}

TEST_F(FreqDist, OtherSharesAreShownOnDemandAndOtherCountsItsValues) {
    FreqDistRows rows;
    const FieldRecord name = field("customers/name");
    ASSERT_TRUE(rows.Fill(*m_viewer, name, {}, 3));
    EXPECT_FALSE(isShownAtFirst(rows, 3) || isShownAtFirst(rows, 4));
    // Null is 228 of the 1,000 records.
    EXPECT_THAT(sharesOf(rows), ElementsAre("Non-null Share of 772 non-null values, Cumulative Share of 1,000 records",
                                            "Ada|51.81 %|40.00 %", "Grace|39.12 %|70.20 %", "(null value)||93.00 %",
                                            "Other (2 values)|9.07 %|100.00 %"));
    // "Other" does not count the null that it sums as non-null.
    ASSERT_TRUE(rows.Fill(*m_viewer, name, {}, 1));
    EXPECT_EQ("Other (4 values)|48.19 %|100.00 %", sharesOf(rows).back());
    ASSERT_TRUE(rows.Fill(*m_viewer, name, "`Count` < 400", 1));
    EXPECT_THAT(sharesOf(rows),
                ElementsAre("Non-null Share of 772 non-null values, Cumulative Share of 600 passing records",
                            "Grace|39.12 %|50.33 %", "Other (3 values)|9.07 %|100.00 %"));
    EXPECT_EQ(1, rows.GetListed());
    EXPECT_EQ(3, rows.GetFolded());
    EXPECT_TRUE(rows.Sort(4, true));
    EXPECT_EQ("Other", rows.GetCell(0, 0).text) << "the greatest share, as a number";

    PatternDistRows patterns;
    ASSERT_TRUE(patterns.Fill(*m_viewer, field("customers/city"), {}, 1));
    EXPECT_THAT(sharesOf(patterns),
                ElementsAre("Share of Records of 11,332 records, Cumulative Share of 11,325 non-null values",
                            "Aaaa 99|76.64 %|76.69 %", "Other (2 patterns)|23.30 %|100.00 %"));
}

TEST_F(FreqDist, OtherStaysLastOnlyWhereValuesAreSorted) {
    FreqDistRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/name"), {}, 3));
    ASSERT_EQ("Other (2 values)|>70|>7.00", lineOf(rows, 3));
    const auto values = [&rows](int column, bool descending) {
        EXPECT_TRUE(rows.Sort(column, descending));
        std::string text;
        for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
            text += fmt::format("{}#{} ", rows.GetCell(0, row).text, rows.GetRowKey(row));
        return text;
    };
    EXPECT_EQ("(null value)#2 Ada#0 Grace#1 Other#3 ", values(0, false));
    EXPECT_EQ("Grace#1 Ada#0 (null value)#2 Other#3 ", values(0, true));
    EXPECT_EQ(3, rows.GetOtherRow());
    // As texts, 70 would come after 400.
    EXPECT_EQ("Other#3 (null value)#2 Grace#1 Ada#0 ", values(1, false));
    EXPECT_EQ(0, rows.GetOtherRow());
    EXPECT_TRUE(rows.IsOther(0));
    EXPECT_TRUE(rows.GetValue(1).isNull());
    EXPECT_EQ(KvbString("Grace"), rows.GetValue(2));
    EXPECT_EQ("Ada#0 Grace#1 (null value)#2 Other#3 ", values(2, true));
    EXPECT_FALSE(rows.Sort(5, false));
    EXPECT_FALSE(rows.Sort(-1, false));
}

TEST_F(FreqDist, AFilterLeavesSharesOfWhatPassesAndTellsWhatItCouldNotJudge) {
    FreqDistRows rows;
    const FieldRecord name = field("customers/name");
    ASSERT_TRUE(rows.Fill(*m_viewer, name, "`Count` > 300 or isnull(`Value`)", 2)) << rows.GetErrorText();
    EXPECT_THAT(linesOf(rows),
                ElementsAre("Ada|>400|>43.01[0.43]", "Grace|>302|>32.47[0.32]", "Other (1 value)|>228|>24.52"));
    EXPECT_EQ("of 930 passing records", rows.GetColumn(2).mark);
    ASSERT_TRUE(rows.Fill(*m_viewer, name, "9223372036854775800 + `Count` > 5", 2)) << rows.GetErrorText();
    EXPECT_EQ(0, rows.GetRowCount());
    EXPECT_THAT(rows.GetEmptyText(),
                StartsWith("No value passes the filter.\nThe filter could not be evaluated for 5"));
    EXPECT_THAT(rows.GetColumn(2).toolTip, StartsWith("Share of 0 passing records\nThe filter could not"));
    EXPECT_FALSE(rows.Fill(*m_viewer, name, "`Nix` > 1", 2));
    EXPECT_THAT(rows.GetErrorText(), ::testing::EndsWith("line 1, column 1: there is no field `Nix`"));
}

TEST_F(FreqDist, AFieldWithoutDataSaysSoInOneRow) {
    FreqDistRows rows;
    FieldRecord none = field("customers/name");
    none.freqCount = 0;
    ASSERT_TRUE(rows.Fill(*m_viewer, none, {}, 100));
    EXPECT_THAT(linesOf(rows), ElementsAre("(Not calculated)?||"));
    EXPECT_TRUE(rows.IsPlaceholder());
    EXPECT_FALSE(rows.IsOther(0));
    EXPECT_TRUE(rows.GetValue(0).isNull());
    EXPECT_EQ(-1, rows.GetOtherRow());
    EXPECT_FALSE(rows.Sort(0, true));
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/remark"), {}, 100));
    EXPECT_THAT(linesOf(rows), ElementsAre("(null value)~|>1,000|>100.00[1.00]"));
}

TEST_F(FreqDist, AFailureLeavesTheRowsThatAreShown) {
    FreqDistRows rows;
    const FieldRecord name = field("customers/name");
    ASSERT_TRUE(rows.Fill(*m_viewer, name, {}, 100));
    ASSERT_TRUE(rows.Sort(0, true));
    const std::vector<std::string> before = linesOf(rows);
    testing::runScript(m_sample.path, "UPDATE distribution_block SET payload = x'00'");
    EXPECT_FALSE(rows.Fill(*m_viewer, name, {}, 100));
    EXPECT_EQ(before, linesOf(rows));
    EXPECT_THAT(rows.GetErrorText(), StartsWith("Error occurred while retrieving frequency distribution:\n\n"));
    m_viewer->close();
    EXPECT_FALSE(rows.Fill(*m_viewer, name, {}, 100));
    EXPECT_EQ(before, linesOf(rows));
    rows.Clear();
    EXPECT_EQ(0, rows.GetRowCount());
    EXPECT_EQ("", rows.GetErrorText());
}

using PatternDist = testing::SampleViewer;

TEST_F(PatternDist, ShowsPatternsWithTheirShortForm) {
    PatternDistRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/since"), {}, 100));
    EXPECT_EQ("Pattern:150|Alternate:150|>Count:150|>Percentage{of 999 non-null values}:150", headingsOf(rows));
    EXPECT_THAT(linesOf(rows), ElementsAre("9999-99-99|9{4}-99-99|>999|>100.00[1.00]"));
    EXPECT_EQ(KvbString("9999-99-99"), rows.GetValue(0));

    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/city"), {}, 1));
    // Null has no pattern: 11325 of the 11332 rows have one.
    EXPECT_THAT(linesOf(rows), ElementsAre("Aaaa 99|Aaaa 99|>8,685|>76.69[0.77]", "Other (2 patterns)||>2,640|>23.31"));
    EXPECT_EQ(1, rows.GetOtherRow());
    EXPECT_EQ("of 11,325 non-null values", rows.GetColumn(3).mark);
    // The command line computes the same total without reading the patterns.
    EXPECT_EQ(11325, patternTotal(field("customers/city").metrics));
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/remark"), {}, 1));
    EXPECT_EQ("", rows.GetColumn(3).mark) << "a list without percentages";
}

TEST_F(PatternDist, AFieldWithoutPatternsAndAFailure) {
    PatternDistRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/city"), {}, 100));
    const std::vector<std::string> before = linesOf(rows);
    FieldRecord unknown;
    unknown.id = -7;
    EXPECT_FALSE(rows.Fill(*m_viewer, unknown, {}, 100));
    EXPECT_THAT(rows.GetErrorText(),
                StartsWith("Error occurred while retrieving pattern distribution:\n\nThere is no"));
    EXPECT_EQ(before, linesOf(rows));
    ASSERT_TRUE(rows.Fill(*m_viewer, field("customers/remark"), {}, 100));
    EXPECT_THAT(linesOf(rows), ElementsAre("(Not calculated)?|||"));
    EXPECT_EQ("", rows.GetErrorText());
}

} // namespace
} // namespace tavix
