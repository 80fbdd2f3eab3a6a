#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "grid/CellOrder.h"
#include "grid/ui/CUGCtrl.h"
#include "grid/ui/Tints.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLabel>
#include <QScrollBar>
#include <QTest>

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

namespace tavix {
namespace {

// Rows named row0, row1, ... over columns of which the first is locked; notes which cells were asked for.
class Rows : public CUGDataSource {
  public:
    explicit Rows(int rows, int columns = 3) : m_columns(columns) {
        for (int row = 0; row < rows; ++row)
            m_order.push_back(row);
    }
    int GetColumnCount() const override { return m_columns; }
    std::int64_t GetRowCount() const override { return static_cast<std::int64_t>(m_order.size()); }
    GridColumn GetColumn(int column) const override {
        GridColumn heading;
        heading.heading = "H" + std::to_string(column);
        heading.width = 130;
        heading.locked = column == 0;
        return heading;
    }
    GridCell GetCell(int column, std::int64_t row) const override {
        asked.insert(row);
        GridCell cell;
        cell.text = Text(column, m_order[static_cast<std::size_t>(row)]);
        return cell;
    }
    std::int64_t GetRowKey(std::int64_t row) const override { return m_order[static_cast<std::size_t>(row)]; }
    bool Sort(int column, bool descending) override {
        if (column == 2)
            return false;
        std::stable_sort(m_order.begin(), m_order.end(), [&](int a, int b) {
            const CellOrderKey left(Text(column, a));
            const CellOrderKey right(Text(column, b));
            return descending ? right < left : left < right;
        });
        return true;
    }
    mutable std::set<std::int64_t> asked;

  private:
    static std::string Text(int column, int row) {
        return column == 0 ? "row" + std::to_string(row) : std::to_string((row * 7) % 10);
    }
    int m_columns;
    std::vector<int> m_order;
};

std::string firstColumn(const CUGCtrl& grid) {
    std::string text;
    for (int row = 0; row < grid.model()->rowCount(); ++row)
        text += toUtf8(grid.model()->index(row, 0).data().toString()) + " ";
    return text;
}

void clickHeading(CUGCtrl& grid, int column) {
    QHeaderView* header = grid.horizontalHeader();
    const QPoint at(header->sectionViewportPosition(column) + 20, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
}

TEST(CUGCtrl, HeadingClickSortsTogglesAndKeepsTheSelectedRow) {
    Rows rows(5);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.resize(600, 300);
    grid.show();
    grid.SelectRow(3);

    clickHeading(grid, 1);
    EXPECT_EQ("row0 row3 row2 row1 row4 ", firstColumn(grid));
    EXPECT_EQ(1, grid.GetCurrentRow());
    EXPECT_THAT(grid.GetSelectedRows(), testing::ElementsAre(1));

    clickHeading(grid, 1);
    EXPECT_EQ("row4 row1 row2 row3 row0 ", firstColumn(grid));
    EXPECT_THAT(grid.GetSelectedRows(), testing::ElementsAre(3));

    // A column that cannot be sorted by leaves rows and arrow alone.
    clickHeading(grid, 2);
    EXPECT_EQ("row4 row1 row2 row3 row0 ", firstColumn(grid));
    EXPECT_EQ(1, grid.horizontalHeader()->sortIndicatorSection());
}

TEST(CUGCtrl, KeysCopyTheSelectedRows) {
    Rows rows(4);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.show();
    grid.SelectRow(1);
    QTest::keyClick(&grid, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ("row1\t7\t7\r\nrow2\t4\t4\r\n", toUtf8(QApplication::clipboard()->text()));
    QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ("H0\tH1\tH2\r\nrow1\t7\t7\r\nrow2\t4\t4\r\n", toUtf8(QApplication::clipboard()->text()));
}

TEST(CUGCtrl, TypingFindsByTheFirstColumn) {
    Rows rows(30);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.show();
    QTest::keyClicks(&grid, QStringLiteral("row17"));
    EXPECT_EQ(17, grid.GetCurrentRow());
    qint64 activated = -1;
    QObject::connect(&grid, &CUGCtrl::RowActivated, [&](qint64 row) { activated = row; });
    QTest::keyClick(&grid, Qt::Key_Return);
    EXPECT_EQ(17, activated);
}

TEST(CUGCtrl, FetchesOnlyWhatItPaints) {
    Rows rows(1'000'000);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.resize(400, 300);
    grid.show();
    grid.grab();
    EXPECT_LT(rows.asked.size(), 20U);
    EXPECT_GT(rows.asked.size(), 3U);
}

TEST(CUGCtrl, LockedColumnStaysInViewWhenScrolledSideways) {
    Rows rows(5, 12);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.resize(500, 300);
    grid.show();
    auto* locked = grid.findChild<QTableView*>(QStringLiteral("lockedColumns"));
    ASSERT_NE(nullptr, locked);
    EXPECT_FALSE(locked->isVisible());

    grid.SelectRow(2);
    for (int i = 0; i < 11; ++i)
        QTest::keyClick(&grid, Qt::Key_Right);
    EXPECT_GT(grid.horizontalScrollBar()->value(), 0);
    EXPECT_TRUE(locked->isVisible());
    EXPECT_EQ(130, locked->width());
    // Walking back, no cell is left hidden below the locked one.
    for (int column = 10; column >= 1; --column) {
        QTest::keyClick(&grid, Qt::Key_Left);
        EXPECT_EQ(column, grid.currentIndex().column());
        EXPECT_GE(grid.visualRect(grid.currentIndex()).left(), 130);
    }
}

TEST(CUGCtrl, RowsReadAnewStayInTheOrderThatTheUserChose) {
    Rows rows(12);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.SortBy(1, true);
    const QString first = grid.model()->index(0, 0).data().toString();
    ASSERT_NE("row0", toUtf8(first));
    rows = Rows(12);
    grid.RowsRefilled();
    EXPECT_EQ(first, grid.model()->index(0, 0).data().toString());
    EXPECT_EQ(1, grid.horizontalHeader()->sortIndicatorSection());
    // A filter that leaves one row, or none, is no reason to forget it.
    for (const int left : {1, 0}) {
        rows = Rows(left);
        grid.RowsRefilled();
        rows = Rows(12);
        grid.RowsRefilled();
        EXPECT_EQ(first, grid.model()->index(0, 0).data().toString());
        EXPECT_EQ(1, grid.horizontalHeader()->sortIndicatorSection());
        EXPECT_EQ(Qt::DescendingOrder, grid.horizontalHeader()->sortIndicatorOrder());
    }
    rows = Rows(12);
    grid.SourceChanged();
    EXPECT_EQ("row0", toUtf8(grid.model()->index(0, 0).data().toString()));
}

class Memory final : public ColumnWidthMemory {
  public:
    explicit Memory(std::map<std::string, int>& kept) : m_kept(kept) {}
    std::optional<int> Read(const std::string& heading) const override {
        const auto width = m_kept.find(heading);
        return width == m_kept.end() ? std::nullopt : std::optional<int>(width->second);
    }
    void Keep(const std::string& heading, int width) override { m_kept[heading] = width; }

  private:
    std::map<std::string, int>& m_kept;
};

TEST(CUGCtrl, WidthsAreTheSourcesUntilTheUserDragsThemAndThenRemembered) {
    std::map<std::string, int> kept;
    Rows rows(2);
    {
        CUGCtrl grid;
        grid.SetWidthMemory(std::make_unique<Memory>(kept));
        grid.SetSource(&rows);
        EXPECT_EQ(130, grid.columnWidth(1));
        EXPECT_TRUE(kept.empty()) << "placing the columns is no choice of the user's";
        grid.setColumnWidth(1, 60);
        grid.setColumnWidth(1, 61);
        grid.SourceChanged();
        EXPECT_EQ(61, grid.columnWidth(1));
        grid.setColumnWidth(2, 200);
    }
    EXPECT_THAT(kept, testing::UnorderedElementsAre(testing::Pair("H1", 61), testing::Pair("H2", 200)));
    CUGCtrl again;
    again.SetSource(&rows);
    again.SetWidthMemory(std::make_unique<Memory>(kept));
    EXPECT_EQ(130, again.columnWidth(0));
    EXPECT_EQ(61, again.columnWidth(1));
    EXPECT_EQ(200, again.columnWidth(2));
}

// A column is the same whatever stands in and below its heading, as in a run over a sample.
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

TEST(CUGCtrl, OrderAndWidthBelongToTheColumnNotToItsHeading) {
    std::map<std::string, int> kept;
    Remarked rows(false);
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.SetWidthMemory(std::make_unique<Memory>(kept));
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

// The second column takes the room that is left.
class WithRest : public Rows {
  public:
    WithRest() : Rows(2) {}
    GridColumn GetColumn(int column) const override {
        GridColumn heading = Rows::GetColumn(column);
        heading.takesRest = column == 1;
        return heading;
    }
};

TEST(CUGCtrl, AColumnTakesTheRoomThatIsLeftUntilItIsDragged) {
    std::map<std::string, int> kept;
    WithRest rows;
    {
        CUGCtrl grid;
        grid.SetWidthMemory(std::make_unique<Memory>(kept));
        grid.SetSource(&rows);
        grid.resize(800, 300);
        grid.show();
        EXPECT_EQ(800 - 2 * 130, grid.columnWidth(1));
        grid.resize(300, 300);
        EXPECT_EQ(130, grid.columnWidth(1)) << "never narrower than its own width";
        grid.resize(700, 300);
        grid.setColumnWidth(2, 140);
        EXPECT_EQ(700 - 2 * 130, grid.columnWidth(1)) << "while another is dragged it stays";
        grid.SourceChanged();
        EXPECT_EQ(700 - 130 - 140, grid.columnWidth(1));
        EXPECT_THAT(kept, testing::ElementsAre(testing::Pair("H2", 140)));
        grid.setColumnWidth(1, 200);
        grid.resize(900, 300);
        EXPECT_EQ(200, grid.columnWidth(1));
    }
    EXPECT_EQ(200, kept["H1"]);
}

// Three rows: a figure with half a bar, a text with blanks around it, a null value.
class Drawn : public Rows {
  public:
    Drawn() : Rows(3, 1) {}
    GridCell GetCell(int, std::int64_t row) const override {
        GridCell cell;
        cell.text = row == 0 ? "5" : row == 1 ? " a\tb " : " null ";
        cell.alignment = CellAlignment::Right;
        cell.bar = row == 0 ? 0.5 : kNoBar;
        cell.state = row == 2 ? CellState::Null : CellState::Ordinary;
        return cell;
    }
    bool Sort(int, bool) override { return false; }
};

QImage picture(CUGCtrl& grid, int row) {
    return grid.viewport()->grab(grid.visualRect(grid.model()->index(row, 0))).toImage();
}

TEST(CUGCtrl, ABarTakesItsShareOfTheCell) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        Drawn rows;
        CUGCtrl grid;
        grid.setPalette(palette);
        grid.SetSource(&rows);
        grid.resize(400, 300);
        grid.show();
        for (const bool selected : {false, true}) {
            if (selected)
                grid.SelectRow(0);
            const QImage image = picture(grid, 0);
            const QColor background = palette.color(selected ? QPalette::Highlight : QPalette::Base);
            const QColor bar = tint::bar(palette, background, selected);
            const QColor text = palette.color(selected ? QPalette::HighlightedText : QPalette::Text);
            const int middle = image.height() / 2;
            EXPECT_EQ(bar, image.pixelColor(image.width() / 4, middle));
            EXPECT_EQ(background, image.pixelColor(image.width() * 5 / 8, middle));
            EXPECT_GT(std::abs(bar.lightness() - text.lightness()), 90);
            EXPECT_NE(bar, background);
        }
        EXPECT_NE(tint::bar(palette, palette.color(QPalette::Base), false),
                  picture(grid, 1).pixelColor(10, picture(grid, 1).height() / 2));
    }
}

TEST(CUGCtrl, InvisibleCharactersAreSeenOnDemandAndCopiedAsTheyAre) {
    Drawn rows;
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.show();
    const QImage text = picture(grid, 1);
    const QImage null = picture(grid, 2);
    grid.SetShowsInvisible(true);
    EXPECT_TRUE(grid.ShowsInvisible());
    EXPECT_NE(text, picture(grid, 1));
    EXPECT_EQ(null, picture(grid, 2));
    grid.SelectRow(1);
    grid.CopySelection(false);
    EXPECT_EQ("\" a\tb \"\r\n", toUtf8(QApplication::clipboard()->text()));
    grid.clearSelection();
    grid.setCurrentIndex({});
    grid.SetShowsInvisible(false);
    EXPECT_EQ(text, picture(grid, 1));
}

TEST(CUGCtrl, OneRowIsNotSortedAndAnotherColumnStartsAscending) {
    Rows one(1);
    CUGCtrl grid;
    grid.SetSource(&one);
    grid.resize(600, 300);
    grid.show();
    clickHeading(grid, 1);
    EXPECT_EQ(-1, grid.horizontalHeader()->sortIndicatorSection());

    Rows rows(5);
    grid.SetSource(&rows);
    clickHeading(grid, 1);
    clickHeading(grid, 1);
    clickHeading(grid, 0);
    EXPECT_EQ("row0 row1 row2 row3 row4 ", firstColumn(grid));
    EXPECT_EQ(Qt::AscendingOrder, grid.horizontalHeader()->sortIndicatorOrder());
}

TEST(Grid, HomeAndEndGoToTheEndsOfTheList) {
    Rows source(500);
    CUGCtrl grid;
    grid.SetSource(&source);
    grid.resize(300, 200);
    grid.show();
    grid.SelectRow(250);
    QTest::keyClick(&grid, Qt::Key_End);
    EXPECT_EQ(499, grid.GetCurrentRow());
    EXPECT_TRUE(grid.viewport()->rect().contains(grid.visualRect(grid.currentIndex()).center()));
    QTest::keyClick(&grid, Qt::Key_Home, Qt::ShiftModifier);
    EXPECT_EQ(0, grid.GetCurrentRow());
    EXPECT_EQ(500U, grid.GetSelectedRows().size());
    QTest::keyClick(&grid, Qt::Key_End);
    EXPECT_EQ(1U, grid.GetSelectedRows().size());
    grid.SetSource(nullptr);
    QTest::keyClick(&grid, Qt::Key_End);
}

class LongTyping : public ::testing::Test {
  protected:
    // The last row, beyond any number of rows that one key press could look through.
    static constexpr int kRows = 1'500'000;

    LongTyping() {
        m_grid.SetSource(&m_source);
        m_grid.resize(400, 300);
        m_grid.show();
        m_grid.SelectRow(0);
    }
    ~LongTyping() override { m_grid.SetSource(nullptr); }
    /// "" while it is not there.
    [[nodiscard]] std::string line() {
        const auto* line = m_grid.findChild<QLabel*>(QStringLiteral("typingSearch"));
        return line && line->isVisible() ? toUtf8(line->text()) : "";
    }

    Rows m_source{kRows};
    CUGCtrl m_grid;
};

TEST_F(LongTyping, FindsTheLastRowOfALongList) {
    m_grid.keyboardSearch(QStringLiteral("row1499999"));
    EXPECT_NE("", line()) << "it goes on";
    EXPECT_EQ(0, m_grid.GetCurrentRow());
    EXPECT_TRUE(QTest::qWaitFor([this] { return m_grid.GetCurrentRow() == kRows - 1; }, 60'000));
    EXPECT_EQ("", line());
}

TEST_F(LongTyping, CanBeStoppedAndSaysWhatItDoes) {
    m_grid.keyboardSearch(QStringLiteral("row14999999"));
    EXPECT_THAT(line(), ::testing::StartsWith("Looking for \u201Crow14999999\u201D: "));
    EXPECT_THAT(line(), ::testing::EndsWith(" of 1,500,000 rows. Esc stops."));
    QTest::keyClick(&m_grid, Qt::Key_Escape);
    EXPECT_EQ("", line());
    const std::size_t asked = m_source.asked.size();
    QCoreApplication::processEvents();
    EXPECT_EQ(asked, m_source.asked.size());
    EXPECT_EQ(0, m_grid.GetCurrentRow());

    // Going elsewhere stops it as well, and rows that are read anew.
    m_grid.keyboardSearch(QStringLiteral("row14999999"));
    ASSERT_NE("", line());
    QTest::keyClick(&m_grid, Qt::Key_Down);
    EXPECT_EQ("", line());
    m_grid.keyboardSearch(QStringLiteral("row14999999"));
    ASSERT_NE("", line());
    m_grid.SourceChanged();
    EXPECT_EQ("", line());
}

TEST_F(LongTyping, GoesOnWithWhatIsTypedMeanwhile) {
    m_grid.keyboardSearch(QStringLiteral("row149"));
    EXPECT_EQ(149, m_grid.GetCurrentRow());
    m_grid.keyboardSearch(QStringLiteral("9998"));
    ASSERT_NE("", line());
    m_grid.keyboardSearch(QStringLiteral("x"));
    EXPECT_THAT(line(), ::testing::StartsWith("Looking for \u201Crow1499998x\u201D: "));
    EXPECT_TRUE(QTest::qWaitFor([this] { return line().rfind("No row", 0) == 0; }, 60'000));
    EXPECT_EQ("No row begins with \u201Crow1499998x\u201D.", line());
    EXPECT_EQ(149, m_grid.GetCurrentRow());
}

} // namespace
} // namespace tavix
