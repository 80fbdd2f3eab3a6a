#include "grid/ui/tests/GridRows.h"

#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QMenu>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using testing::firstColumn;
using testing::Rows;
using testing::show;

void clickHeading(CUGCtrl& grid, int column) {
    QHeaderView* header = grid.horizontalHeader();
    const QPoint at(header->sectionViewportPosition(column) + 20, header->height() / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
}

TEST(CUGCtrl, HeadingClickSortsTogglesAndKeepsTheSelectedRow) {
    Rows rows(5);
    CUGCtrl grid;
    show(grid, rows);
    grid.SelectRow(3);

    clickHeading(grid, 1);
    EXPECT_EQ("row0 row3 row2 row1 row4 ", firstColumn(grid));
    EXPECT_EQ(1, grid.GetCurrentRow());
    EXPECT_THAT(grid.GetSelectedRows(), ::testing::ElementsAre(1));

    clickHeading(grid, 1);
    EXPECT_EQ("row4 row1 row2 row3 row0 ", firstColumn(grid));
    EXPECT_THAT(grid.GetSelectedRows(), ::testing::ElementsAre(3));

    // A click on a column that cannot be sorted changes neither rows nor arrow.
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

TEST(CUGCtrl, FetchesOnlyWhatItPaints) {
    Rows rows(1'000'000);
    CUGCtrl grid;
    show(grid, rows, 400, 300);
    EXPECT_LE(rows.asked.size(), 2000U) << "the widths of the columns follow from the first rows";
    rows.asked.clear();
    grid.grab();
    EXPECT_LT(rows.asked.size(), 20U);
    EXPECT_GT(rows.asked.size(), 3U);
}

TEST(CUGCtrl, LockedColumnStaysInViewWhenScrolledSideways) {
    Rows rows(5, 12);
    CUGCtrl grid;
    show(grid, rows, 500, 300);
    auto* locked = grid.findChild<QTableView*>(QStringLiteral("lockedColumns"));
    ASSERT_NE(nullptr, locked);
    EXPECT_FALSE(locked->isVisible());

    grid.SelectRow(2);
    for (int i = 0; i < 11; ++i)
        QTest::keyClick(&grid, Qt::Key_Right);
    EXPECT_GT(grid.horizontalScrollBar()->value(), 0);
    EXPECT_TRUE(locked->isVisible());
    EXPECT_EQ(130, locked->width());
    // On the way back, the current cell is never hidden below the locked column.
    for (int column = 10; column >= 1; --column) {
        QTest::keyClick(&grid, Qt::Key_Left);
        EXPECT_EQ(column, grid.currentIndex().column());
        EXPECT_GE(grid.visualRect(grid.currentIndex()).left(), 130);
    }
}

/// The last column stays at the right edge.
class WithPinned : public Rows {
  public:
    WithPinned() : Rows(5, 12) {}
    GridColumn GetColumn(int column) const override {
        GridColumn heading = Rows::GetColumn(column);
        heading.pinned = column == 11;
        return heading;
    }
};

TEST(CUGCtrl, PinnedColumnsStayAtTheRightEdgeAndHideNoCurrentCell) {
    WithPinned rows;
    CUGCtrl grid;
    show(grid, rows, 700, 300);
    const auto* pinned = grid.findChild<QTableView*>(QStringLiteral("pinnedColumns"));
    ASSERT_NE(nullptr, pinned);
    EXPECT_TRUE(pinned->isVisible());
    EXPECT_EQ(grid.viewport()->width(), pinned->geometry().right() + 1);
    EXPECT_EQ(130, pinned->width());
    grid.SelectRow(2);
    for (int column = 1; column < 11; ++column) {
        QTest::keyClick(&grid, Qt::Key_Right);
        EXPECT_EQ(column, grid.currentIndex().column());
        const QRect cell = grid.visualRect(grid.currentIndex());
        EXPECT_GE(cell.left(), 130);
        EXPECT_TRUE(!pinned->isVisible() || cell.right() < pinned->x()) << column;
    }
    grid.horizontalScrollBar()->setValue(grid.horizontalScrollBar()->maximum());
    EXPECT_FALSE(pinned->isVisible()) << "the grid itself shows the column";
    grid.horizontalScrollBar()->setValue(0);
    grid.resize(280, 300);
    EXPECT_FALSE(pinned->isVisible()) << "no room";
}

/// Numbers at the right of wide columns.
class PinnedNumbers final : public WithPinned {
  public:
    GridCell GetCell(int, std::int64_t) const override {
        GridCell cell;
        cell.text = "99";
        cell.alignment = CellAlignment::Right;
        return cell;
    }
};

TEST(CUGCtrl, ANumberThatAPinnedColumnWouldCoverIsDrawnBeforeIt) {
    PinnedNumbers rows;
    CUGCtrl grid;
    show(grid, rows, 700, 300);
    const auto* pinned = grid.findChild<QTableView*>(QStringLiteral("pinnedColumns"));
    ASSERT_TRUE(pinned && pinned->isVisible());
    const int edge = pinned->x();
    int colored = 0;
    for (const int scrolled : {0, 30, 60}) {
        grid.horizontalScrollBar()->setValue(scrolled);
        const int column = grid.columnAt(edge - 1);
        const QRect cell = grid.visualRect(grid.model()->index(1, column));
        if (cell.right() <= edge || edge - cell.left() < 40)
            continue;
        const QImage image = grid.viewport()->grab(QRect(cell.topLeft(), QPoint(edge - 1, cell.bottom()))).toImage();
        const QColor background = image.pixelColor(1, 1);
        for (int x = 0; x < image.width(); ++x)
            colored += image.pixelColor(x, image.height() / 2) == background ? 0 : 1;
        EXPECT_GT(colored, 0) << scrolled;
    }
    EXPECT_GT(colored, 0) << "no column was covered in part";
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
    // The order survives a filter that leaves one row or none.
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

TEST(CUGCtrl, OneRowIsNotSortedAndAnotherColumnStartsAscending) {
    Rows one(1);
    CUGCtrl grid;
    show(grid, one);
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

TEST(CUGCtrl, HomeAndEndGoToTheEndsOfTheList) {
    Rows source(500);
    CUGCtrl grid;
    show(grid, source, 300, 200);
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

/// The second column can be hidden.
class WithOptional final : public Rows {
  public:
    WithOptional() : Rows(2) {}
    GridColumn GetColumn(int column) const override {
        GridColumn heading = Rows::GetColumn(column);
        heading.isOptional = column == 1;
        return heading;
    }
};

TEST(CUGCtrl, TheMenuOfAHeadingShowsAndHidesOptionalColumns) {
    WithOptional rows;
    CUGCtrl grid;
    show(grid, rows);
    grid.SelectRow(1);
    int further = -1;
    grid.SetHeadingEntries([&further](QMenu&, int column) { further = column; });
    // Opens the menu of the third heading and chooses an entry.
    const auto choose = [&grid](const QString& entry) {
        QTimer::singleShot(0, &grid, [entry] {
            auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            ASSERT_NE(nullptr, menu);
            for (QAction* action : menu->actions()) {
                if (action->text() == entry)
                    action->trigger();
            }
            menu->close();
        });
        QHeaderView* header = grid.horizontalHeader();
        Q_EMIT header->customContextMenuRequested({header->sectionViewportPosition(2) + 5, 5});
    };
    choose(QStringLiteral("H1"));
    EXPECT_EQ(2, further);
    EXPECT_TRUE(grid.isColumnHidden(1));
    grid.CopySelection(true);
    EXPECT_EQ("H0\tH2\r\nrow1\t7\r\n", toUtf8(QApplication::clipboard()->text()));
    choose(QStringLiteral("H1"));
    EXPECT_FALSE(grid.isColumnHidden(1));
    EXPECT_EQ(130, grid.columnWidth(1));
}

} // namespace
} // namespace tavix
