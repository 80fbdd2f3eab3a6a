#include "grid/ui/tests/GridRows.h"

#include <QHeaderView>

#include <gmock/gmock.h>

#include <map>

namespace tavix {
namespace {

using testing::firstColumn;
using testing::Rows;
using testing::show;

class Memory final : public ColumnMemory {
  public:
    explicit Memory(std::map<std::string, int>& kept) : m_kept(kept) {}
    std::optional<int> ReadWidth(const std::string& heading) const override {
        const auto width = m_kept.find(heading);
        return width == m_kept.end() ? std::nullopt : std::optional<int>(width->second);
    }
    void KeepWidth(const std::string& heading, int width) override { m_kept[heading] = width; }
    std::optional<bool> ReadShown(const std::string&) const override { return std::nullopt; }
    void KeepShown(const std::string&, bool) override {}

  private:
    std::map<std::string, int>& m_kept;
};

TEST(ColumnWidths, WidthsAreTheSourcesUntilTheUserDragsThemAndThenRemembered) {
    std::map<std::string, int> kept;
    Rows rows(2);
    {
        CUGCtrl grid;
        grid.SetColumnMemory(std::make_unique<Memory>(kept));
        grid.SetSource(&rows);
        EXPECT_EQ(130, grid.columnWidth(1));
        EXPECT_TRUE(kept.empty()) << "placing the columns is no choice of the user's";
        grid.setColumnWidth(1, 60);
        grid.setColumnWidth(1, 61);
        grid.SourceChanged();
        EXPECT_EQ(61, grid.columnWidth(1));
        grid.setColumnWidth(2, 200);
    }
    EXPECT_THAT(kept, ::testing::UnorderedElementsAre(::testing::Pair("H1", 61), ::testing::Pair("H2", 200)));
    CUGCtrl again;
    again.SetSource(&rows);
    again.SetColumnMemory(std::make_unique<Memory>(kept));
    EXPECT_EQ(130, again.columnWidth(0));
    EXPECT_EQ(61, again.columnWidth(1));
    EXPECT_EQ(200, again.columnWidth(2));
}

// A column keeps its identity when its heading and mark change, as in a run over a sample.
class Remarked : public Rows {
  public:
    explicit Remarked(bool isRemarked) : Rows(12), m_isRemarked(isRemarked) {}
    GridColumn GetColumn(int column) const override {
        GridColumn heading = Rows::GetColumn(column);
        heading.key = "column " + std::to_string(column);
        if (m_isRemarked) {
            heading.heading += " anew";
            heading.mark = "(sample)";
        }
        return heading;
    }

  private:
    bool m_isRemarked;
};

TEST(ColumnWidths, OrderAndWidthBelongToTheColumnNotToItsHeading) {
    std::map<std::string, int> kept;
    Remarked rows(false);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.SetColumnMemory(std::make_unique<Memory>(kept));
    grid.resize(600, 300);
    grid.show();
    grid.SortBy(1, true);
    grid.setColumnWidth(1, 77);
    const std::string sorted = firstColumn(grid);
    const int height = grid.horizontalHeader()->height();
    rows = Remarked(true);
    grid.RowsRefilled();
    EXPECT_EQ(sorted, firstColumn(grid));
    EXPECT_EQ(1, grid.horizontalHeader()->sortIndicatorSection());
    EXPECT_EQ(77, grid.columnWidth(1));
    EXPECT_GT(grid.horizontalHeader()->height(), height) << "the remark has a line of its own";
    EXPECT_EQ("H1 anew", toUtf8(grid.model()->headerData(1, Qt::Horizontal).toString()));
    EXPECT_EQ("H1 anew (sample)",
              toUtf8(grid.model()->headerData(1, Qt::Horizontal, Qt::AccessibleTextRole).toString()));
    rows = Remarked(false);
    grid.RowsRefilled();
    EXPECT_EQ(height, grid.horizontalHeader()->height());
}

// The second column fills the remaining room.
class WithRest : public Rows {
  public:
    WithRest() : Rows(2) {}
    GridColumn GetColumn(int column) const override {
        GridColumn heading = Rows::GetColumn(column);
        heading.takesRest = column == 1;
        return heading;
    }
};

TEST(ColumnWidths, AColumnTakesTheRoomThatIsLeftUntilItIsDragged) {
    std::map<std::string, int> kept;
    WithRest rows;
    {
        CUGCtrl grid;
        grid.SetColumnMemory(std::make_unique<Memory>(kept));
        show(grid, rows, 800, 300);
        EXPECT_EQ(800 - 2 * 130, grid.columnWidth(1));
        grid.resize(300, 300);
        EXPECT_EQ(130, grid.columnWidth(1)) << "never narrower than its own width";
        grid.resize(700, 300);
        grid.setColumnWidth(2, 140);
        EXPECT_EQ(700 - 2 * 130, grid.columnWidth(1)) << "while another is dragged it stays";
        grid.SourceChanged();
        EXPECT_EQ(700 - 130 - 140, grid.columnWidth(1));
        EXPECT_THAT(kept, ::testing::ElementsAre(::testing::Pair("H2", 140)));
        grid.setColumnWidth(1, 200);
        grid.resize(900, 300);
        EXPECT_EQ(200, grid.columnWidth(1));
    }
    EXPECT_EQ(200, kept["H1"]);
}

} // namespace
} // namespace tavix
