#include "base/ui/Theme.h"
#include "grid/ui/Tints.h"
#include "grid/ui/tests/GridRows.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <set>

namespace tavix {
namespace {

using testing::Rows;
using testing::show;

// Three rows: a number with half a bar, a text with spaces around it, a null value.
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

void takeFocus(CUGCtrl& grid) {
    grid.activateWindow();
    grid.setFocus();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&grid));
}

TEST(CellDelegate, ABarTakesItsShareOfTheCell) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        Drawn rows;
        CUGCtrl grid;
        grid.setPalette(palette);
        show(grid, rows, 400, 300);
        takeFocus(grid);
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

TEST(CellDelegate, ASelectionWithoutTheFocusIsPalerAndReachesTheEdge) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        Drawn rows;
        CUGCtrl grid;
        grid.setPalette(palette);
        show(grid, rows, 400, 300);
        grid.SelectRow(1);
        takeFocus(grid);
        const QPoint beyond(grid.viewport()->width() - 3, grid.visualRect(grid.model()->index(1, 0)).center().y());
        const auto colors = [&grid, beyond] {
            const QImage image = grid.viewport()->grab().toImage();
            EXPECT_EQ(image.pixelColor(4, beyond.y()), image.pixelColor(beyond));
            return image.pixelColor(beyond);
        };
        EXPECT_EQ(palette.color(QPalette::Highlight), colors());
        grid.clearFocus();
        const QColor pale = colors();
        EXPECT_NE(palette.color(QPalette::Highlight), pale);
        EXPECT_NE(palette.color(QPalette::AlternateBase), pale);
        EXPECT_GT(std::abs(palette.color(QPalette::Text).lightness() - pale.lightness()), 90);
        // A click there selects the row.
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, beyond - QPoint(0, grid.rowHeight(0)));
        EXPECT_EQ(0, grid.GetCurrentRow());
    }
}

/// A share's bar of three parts, one of them tiny, then a line of runs.
class Pictures final : public Rows {
  public:
    Pictures() : Rows(2, 1) {}
    GridCell GetCell(int, std::int64_t row) const override {
        GridCell cell;
        cell.text = row == 0 ? "1 null, 1 blank, 998 filled of 1,000" : "+2.1 %";
        if (row == 0)
            cell.picture.parts = {0.001, 0.001, 0.998};
        else
            cell.picture.line = {1, std::nan(""), 3, 2};
        return cell;
    }
};

TEST(CellDelegate, EveryPartOfABarIsSeenAndALineIsDrawnBesideItsText) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        Pictures rows;
        CUGCtrl grid;
        grid.setPalette(palette);
        show(grid, rows, 400, 300);
        const QImage image = picture(grid, 0);
        std::set<QRgb> tints;
        for (int x = 0; x < image.width(); ++x)
            tints.insert(image.pixel(x, image.height() / 2));
        EXPECT_EQ(4U, tints.size()) << "background and three parts";
        for (std::size_t part = 0; part < 3; ++part)
            EXPECT_TRUE(tints.count(tint::part(palette, palette.color(QPalette::Base), part).rgb())) << part;
        const QImage line = picture(grid, 1);
        int accents = 0;
        for (int x = 0; x < line.width() / 2; ++x) {
            for (int y = 0; y < line.height(); ++y)
                accents += line.pixelColor(x, y) == tint::accent(palette) ? 1 : 0;
        }
        EXPECT_GT(accents, 3);
        EXPECT_EQ("1 null, 1 blank, 998 filled of 1,000",
                  toUtf8(grid.model()->index(0, 0).data(Qt::AccessibleTextRole).toString()));
    }
}

// A row for each mark.
class Marked final : public Rows {
  public:
    Marked() : Rows(6, 1) {}
    GridCell GetCell(int, std::int64_t row) const override {
        GridCell cell;
        cell.text = "5";
        cell.alert = static_cast<AlertMark>(row);
        return cell;
    }
    bool Sort(int, bool) override { return false; }
};

TEST(CellDelegate, LevelsOfAlertsDifferInShapeAndOnlyRaisedOnesAreStrong) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        Marked rows;
        CUGCtrl grid;
        grid.setPalette(palette);
        show(grid, rows, 400, 300);
        // The corner itself, and a point on the edge of a raised one.
        const auto colorAt = [&grid](AlertMark mark, int fromRight, int fromTop) {
            const QImage image = picture(grid, static_cast<int>(mark));
            return image.pixelColor(image.width() - 1 - fromRight, fromTop);
        };
        const QColor error = tint::alert(palette);
        const QColor warning = tint::accentWarm(palette);
        EXPECT_EQ(error, colorAt(AlertMark::Error, 1, 1));
        EXPECT_EQ(error, colorAt(AlertMark::Error, 4, 3));
        EXPECT_NE(warning, colorAt(AlertMark::Warning, 1, 1)) << "outlined";
        EXPECT_EQ(warning, colorAt(AlertMark::Warning, 4, 3));
        EXPECT_NE(error, warning);
        for (const AlertMark pale : {AlertMark::Quiet, AlertMark::Muted, AlertMark::CannotBeJudged}) {
            const QColor color = colorAt(pale, 1, 1);
            const QColor background = colorAt(pale, 20, 3);
            EXPECT_NE(background, color);
            EXPECT_EQ(0, color.hslSaturation() > 60 ? 1 : 0) << "no colour of its own";
            EXPECT_EQ(background, colorAt(pale, 7, 1)) << "small";
        }
        const auto said = [&grid](AlertMark mark) {
            const QModelIndex cell = grid.model()->index(static_cast<int>(mark), 0);
            return toUtf8(cell.data(Qt::AccessibleTextRole).toString());
        };
        EXPECT_EQ("5", said(AlertMark::None));
        EXPECT_EQ("5, alert, quiet", said(AlertMark::Quiet));
        EXPECT_EQ("5, alert, muted", said(AlertMark::Muted));
        EXPECT_EQ("5, alert, cannot be judged", said(AlertMark::CannotBeJudged));
        EXPECT_EQ("5, alert raised, warning", said(AlertMark::Warning));
        EXPECT_EQ("5, alert raised, error", said(AlertMark::Error));
    }
}

// One row: the shares of two runs.
class DrawnOfTwoRuns final : public Rows {
  public:
    DrawnOfTwoRuns() : Rows(1, 1) {}
    GridCell GetCell(int, std::int64_t) const override {
        GridCell cell;
        cell.barBefore = 0.75;
        cell.bar = 0.25;
        return cell;
    }
};

TEST(CellDelegate, BarsOfTwoRunsAreAboveEachOther) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        DrawnOfTwoRuns rows;
        CUGCtrl grid;
        grid.setPalette(palette);
        show(grid, rows, 400, 300);
        takeFocus(grid);
        for (const bool selected : {false, true}) {
            if (selected)
                grid.SelectRow(0);
            const QImage image = picture(grid, 0);
            const QColor background = palette.color(selected ? QPalette::Highlight : QPalette::Base);
            const QColor before = tint::barBefore(palette, background, selected);
            const QColor after = tint::barAfter(palette, background, selected);
            const int upper = image.height() / 4;
            const int lower = image.height() * 3 / 4;
            EXPECT_EQ(before, image.pixelColor(image.width() / 2, upper));
            EXPECT_EQ(background, image.pixelColor(image.width() * 7 / 8, upper));
            EXPECT_EQ(after, image.pixelColor(image.width() / 8, lower));
            EXPECT_EQ(background, image.pixelColor(image.width() / 2, lower));
            EXPECT_GT(std::abs(before.lightness() - after.lightness()), 25) << "told apart without colour";
        }
    }
}

TEST(CellDelegate, InvisibleCharactersAreSeenOnDemandAndCopiedAsTheyAre) {
    Drawn rows;
    CUGCtrl grid;
    grid.SetSource(&rows);
    grid.show();
    const QImage text = picture(grid, 1);
    const QImage null = picture(grid, 2);
    grid.SetShowsInvisible(true);
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

} // namespace
} // namespace tavix
