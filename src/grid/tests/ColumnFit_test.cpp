#include "grid/ColumnFit.h"

#include <gmock/gmock.h>

#include <set>

namespace tavix {
namespace {

using ::testing::ElementsAre;

constexpr int kBound = 280;

ColumnNeed column(int least, int heading, int content) {
    return {least, heading, content, false, false, false, {}};
}

std::vector<int> fitted(const std::vector<ColumnNeed>& columns, int room) {
    return fitColumns(columns, room, kBound);
}

TEST(ColumnFit, AColumnGrowsToItsHeadingAndContentUpToABound) {
    EXPECT_THAT(fitted({column(130, 80, 90), column(130, 150, 90), column(130, 80, 250), column(130, 80, 900)}, 100),
                ElementsAre(130, 150, 250, 390));
    EXPECT_THAT(fitted({column(25, 20, 0), column(25, 20, 200), column(25, 20, 900)}, 10), ElementsAre(25, 200, 280))
        << "the bound of a narrow column";
    EXPECT_THAT(fitted({column(130, 900, 50)}, 100), ElementsAre(390)) << "the heading is bounded, too";
}

TEST(ColumnFit, GrowingColumnsDoNotPushOthersOutOfView) {
    // Value, count and percentage: the value takes what the figures leave.
    EXPECT_THAT(fitted({column(150, 50, 400), column(150, 60, 70), column(150, 90, 60)}, 600),
                ElementsAre(300, 150, 150));
    EXPECT_THAT(fitted({column(150, 50, 400), column(150, 60, 200), column(150, 90, 60)}, 600),
                ElementsAre(250, 200, 150))
        << "equal growth; what one does not need goes to the other";
    ColumnNeed name = column(130, 50, 260);
    name.isName = true;
    EXPECT_THAT(fitted({name, column(130, 50, 300), column(130, 50, 60)}, 550), ElementsAre(260, 160, 130));
    EXPECT_THAT(fitted({column(150, 50, 400), column(150, 60, 70)}, 290), ElementsAre(400, 150))
        << "a grid that is scrolled anyway";
}

TEST(ColumnFit, RoomThatIsLeftGoesToCutColumnsThenToTheOneThatTakesIt) {
    EXPECT_THAT(fitted({column(130, 50, 600), column(130, 50, 60)}, 600), ElementsAre(470, 130));
    EXPECT_THAT(fitted({column(130, 50, 600), column(130, 50, 60)}, 1000), ElementsAre(600, 130)) << "the rest is left";
    ColumnNeed rest = column(130, 50, 60);
    rest.takesRest = true;
    EXPECT_THAT(fitted({column(130, 50, 60), rest, column(130, 50, 200)}, 800), ElementsAre(130, 470, 200));
    EXPECT_THAT(fitted({column(130, 50, 60), rest}, 200), ElementsAre(130, 130)) << "never below its own width";
}

TEST(ColumnFit, ABlankColumnIsAsWideAsItsHeadingAndAChosenWidthStays) {
    ColumnNeed blank = column(130, 90, 70);
    blank.isBlank = true;
    ColumnNeed icons = column(25, 20, 0);
    icons.isBlank = true;
    EXPECT_THAT(fitted({blank, column(130, 50, 400), icons}, 500), ElementsAre(90, 385, 25));
    ColumnNeed chosen = column(130, 90, 400);
    chosen.chosen = 60;
    EXPECT_THAT(fitted({chosen, blank}, 1000), ElementsAre(60, 90));
    chosen.takesRest = true;
    EXPECT_THAT(fitted({chosen, blank}, 1000), ElementsAre(60, 90));
}

/// A list in which the rows before `firstFigure` are blank; records which rows were asked for.
class List final : public CUGDataSource {
  public:
    List(std::int64_t rows, std::int64_t firstFigure) : m_rows(rows), m_firstFigure(firstFigure) {}
    [[nodiscard]] int GetColumnCount() const override { return 1; }
    [[nodiscard]] std::int64_t GetRowCount() const override { return m_rows; }
    [[nodiscard]] GridColumn GetColumn(int) const override { return {}; }
    [[nodiscard]] GridCell GetCell(int, std::int64_t row) const override {
        asked.insert(row);
        GridCell cell;
        cell.text = row < m_firstFigure ? "(Unknown)" : "figure " + std::to_string(row);
        cell.state = row < m_firstFigure ? CellState::Unknown : CellState::Ordinary;
        return cell;
    }
    bool Sort(int, bool) override { return false; }
    mutable std::set<std::int64_t> asked;

  private:
    std::int64_t m_rows;
    std::int64_t m_firstFigure;
};

TEST(ColumnFit, TheLongestOfTheFirstCellsIsMeasuredAndNeverAWholeLongList) {
    const List figures(1'000'000, 0);
    const ColumnSample sample = sampleColumn(figures, 0, false);
    EXPECT_FALSE(sample.isBlank);
    ASSERT_EQ(3U, sample.longest.size());
    EXPECT_EQ("figure 100", sample.longest.front().text);
    EXPECT_EQ(200U, figures.asked.size());

    const List unknown(1'000'000, 1'000'000);
    EXPECT_FALSE(sampleColumn(unknown, 0, false).isBlank) << "nobody has looked at the others";
    EXPECT_EQ(2000U, unknown.asked.size());
}

TEST(ColumnFit, AColumnIsBlankOnlyIfNoRowHasAFigure) {
    EXPECT_TRUE(sampleColumn(List(500, 500), 0, false).isBlank);
    EXPECT_FALSE(sampleColumn(List(500, 499), 0, false).isBlank);
    EXPECT_FALSE(sampleColumn(List(1, 1), 0, false).isBlank) << "the only row may be a message";
    EXPECT_FALSE(sampleColumn(List(0, 0), 0, false).isBlank);
}

} // namespace
} // namespace tavix
