// The tabs of the views of tables, collections and fields: which there are, how to move between them, and how they are
// drawn.
#include "base/ui/Theme.h"
#include "frame/ui/tests/ViewOverSample.h"
#include "support/SampleAlerts.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/CTableView.h"

#include <QComboBox>
#include <QImage>
#include <QMenu>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include <cmath>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using testing::ViewOverSample;

class ReportTabs : public ViewOverSample {
  protected:
    void SetUp() override {
        ASSERT_TRUE(load());
        ASSERT_TRUE(selectTable("customers"));
    }
    /// "caption code" of each tab, with an asterisk if selecting it does not show exactly that tab.
    std::vector<std::string> tabs() {
        std::vector<std::string> lines;
        for (int i = 0; i < strip().count(); ++i) {
            strip().setCurrentIndex(i);
            bool isAlone = tab().isVisible() && tab().IsActive();
            for (int other = 0; other < report().GetTabCount(); ++other) {
                const CProfTab& each = report().GetTab(other);
                isAlone = isAlone && (other == i || (!each.isVisible() && !each.IsActive()));
            }
            lines.push_back(toUtf8(strip().tabText(i)) + " " + std::to_string(m_view->GetItemCode()) +
                            (isAlone ? "" : "*"));
        }
        return lines;
    }
    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        ASSERT_TRUE(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    QPoint middleOfTab(int index) { return strip().tabRect(index).center(); }
};

TEST_F(ReportTabs, TablesCollectionsAndFieldsHaveTheirs) {
    const auto ofTable = ElementsAre("Standard Metrics 0", "Custom Metrics 1", "Business Rules 2", "Alerts 3",
                                     "Visualizations 4", "Notes 14", "Changes -1");
    const auto ofField =
        ElementsAre("Column Profiling 5", "Frequency Distribution 6", "Pattern Frequency Distribution 7",
                    "Percentiles 8", "Outliers 9", "Primary Key/Foreign Key Analysis 12", "Notes 10", "Changes -1");
    EXPECT_THAT(tabs(), ofTable);
    selectCollection(0);
    EXPECT_THAT(tabs(), ofTable);
    ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("customers/balance")));
    EXPECT_THAT(tabs(), ofField);
    ASSERT_TRUE(selectField("customers", "city"));
    EXPECT_THAT(tabs(), ofField);
}

TEST_F(ReportTabs, TheTabThatWasOpenLastIsOpenedForTablesAndForCollectionsByThemselves) {
    CTavixDoc& document = m_view->GetTavixDoc();
    EXPECT_EQ(-1, document.GetTab(ReportPaneKind::Table));
    EXPECT_EQ(0, report().GetCurrentTab());
    report().SelectTab(CTableView::Notes);
    selectCollection(0);
    EXPECT_EQ(0, report().GetCurrentTab());
    report().SelectTab(CTableView::Alerts);
    ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("customers/balance")));
    EXPECT_EQ(0, report().GetCurrentTab());
    report().SelectTab(CFieldView::Outliers);

    ASSERT_TRUE(selectTable("suppliers"));
    EXPECT_EQ(CTableView::Notes, report().GetCurrentTab());
    ASSERT_TRUE(selectField("customers", "city"));
    EXPECT_EQ(CFieldView::ColumnProfiling, report().GetCurrentTab());
    report().SelectTab(CFieldView::Frequency);
    selectCollection(1);
    EXPECT_EQ(CTableView::Alerts, report().GetCurrentTab());
    EXPECT_TRUE(tab().isVisible());
    ASSERT_TRUE(m_view->SelectField(m_sample.fields.at("suppliers/id")));
    EXPECT_EQ(CFieldView::Outliers, report().GetCurrentTab());
    EXPECT_EQ("id", header(report()).substr(0, 2));
    ASSERT_TRUE(selectField("suppliers", "city"));
    EXPECT_EQ(CFieldView::Frequency, report().GetCurrentTab());

    // An invalid index counts as none; the tab of a detached window is not remembered.
    document.SetTab(ReportPaneKind::Table, NavigatorPage::Tables, 7);
    ASSERT_TRUE(selectTable("orders"));
    EXPECT_EQ(0, report().GetCurrentTab());
    report().SelectTab(CTableView::Visualizations);
    CTearOff& window = detach();
    EXPECT_EQ(CTableView::Visualizations, window.GetView().GetCurrentTab());
    window.GetView().SelectTab(CTableView::CustomMetrics);
    EXPECT_EQ(CTableView::Visualizations, report().GetCurrentTab());
    EXPECT_EQ(CTableView::Visualizations, document.GetTab(ReportPaneKind::Table));
}

TEST_F(ReportTabs, KeysGoFromTabToTabAndRoundTheEnds) {
    activate(*m_view);
    report().FocusContents();
    EXPECT_EQ(&grid(tab()), QApplication::focusWidget());
    press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(CTableView::Changes, report().GetCurrentTab());
    press(Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(CTableView::Notes, report().GetCurrentTab());
    // The list of notes has the focus now; its text must pass the keys on as well.
    ASSERT_TRUE(tab().isAncestorOf(QApplication::focusWidget()));
    tab().GetLastTabStop()->setFocus();
    press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(CTableView::Changes, report().GetCurrentTab());
    press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(CTableView::StandardMetrics, report().GetCurrentTab());
    press(Qt::Key_Tab, Qt::ControlModifier);
    EXPECT_EQ(CTableView::CustomMetrics, report().GetCurrentTab());
    // Only a sentence is shown: the strip takes the focus, and the keys still work.
    EXPECT_EQ(&strip(), QApplication::focusWidget());
    press(Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(CTableView::BusinessRules, report().GetCurrentTab());
    press(Qt::Key_Backtab, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(CTableView::CustomMetrics, report().GetCurrentTab());

    strip().setFocus();
    const std::pair<Qt::Key, int> steps[] = {{Qt::Key_Right, 2}, {Qt::Key_Right, 3}, {Qt::Key_Left, 2},
                                             {Qt::Key_End, 6},   {Qt::Key_Right, 6}, {Qt::Key_Home, 0},
                                             {Qt::Key_Left, 0},  {Qt::Key_Down, 0},  {Qt::Key_Right, 1}};
    for (const auto& [key, index] : steps) {
        press(key);
        EXPECT_EQ(index, report().GetCurrentTab()) << key;
        EXPECT_EQ(&strip(), QApplication::focusWidget());
    }
    EXPECT_TRUE(tab().isVisible());
}

TEST_F(ReportTabs, APressSelectsAndADoubleClickIsPosted) {
    auto& control = dynamic_cast<CProfTabCtrl&>(strip());
    QSignalSpy doubleClicks(&control, &CProfTabCtrl::TabDoubleClicked);
    QTest::mousePress(&control, Qt::LeftButton, {}, middleOfTab(3));
    EXPECT_EQ(3, report().GetCurrentTab()) << "before the button is up";
    EXPECT_TRUE(tab().isVisible());
    QTest::mouseRelease(&control, Qt::LeftButton, {}, middleOfTab(3));
    QTest::mouseClick(&control, Qt::RightButton, {}, middleOfTab(1));
    EXPECT_EQ(3, report().GetCurrentTab());
    QTest::mouseClick(&control, Qt::LeftButton, {}, {control.width() - 2, 10});
    EXPECT_EQ(3, report().GetCurrentTab()) << "beside the last tab";

    QTest::mouseClick(&control, Qt::LeftButton, {}, middleOfTab(2));
    QTest::mouseDClick(&control, Qt::LeftButton, {}, middleOfTab(2));
    EXPECT_EQ(2, report().GetCurrentTab());
    EXPECT_EQ(0, doubleClicks.count());
    QCoreApplication::processEvents();
    ASSERT_EQ(1, doubleClicks.count());
    EXPECT_EQ(2, doubleClicks.at(0).at(0).toInt());
    // Other buttons, and clicks beside the tabs, do nothing.
    QTest::mouseDClick(&control, Qt::RightButton, {}, middleOfTab(1));
    QTest::mouseDClick(&control, Qt::MiddleButton, {}, middleOfTab(1));
    QTest::mouseDClick(&control, Qt::LeftButton, {}, {control.width() - 2, 10});
    QCoreApplication::processEvents();
    EXPECT_EQ(1, doubleClicks.count());
    EXPECT_EQ(2, report().GetCurrentTab());
}

TEST_F(ReportTabs, TheStripKeepsItsHeightInAnyFontAndFollowsIt) {
    const auto widths = [this] {
        int sum = 0;
        for (int index = 0; index < strip().count(); ++index)
            sum += strip().tabRect(index).width();
        return sum;
    };
    const QFont usual = m_view->font();
    const int before = widths();
    QFont font = usual;
    font.setPointSizeF(usual.pointSizeF() * 0.6);
    m_view->setFont(font);
    EXPECT_EQ(22, strip().height());
    EXPECT_LT(widths(), before);
    font.setPointSizeF(usual.pointSizeF() * 3);
    m_view->setFont(font);
    EXPECT_EQ(22, strip().height());
    // Captions that are too high are drawn smaller, so that nothing is cut off.
    const QImage image = strip().grab().toImage();
    const QRect face = strip().tabRect(report().GetCurrentTab());
    for (int x = face.left() + 4; x < face.right() - 4; ++x)
        EXPECT_EQ(QColor(223, 223, 223), image.pixelColor(x, 20)) << x;
    m_view->setFont(usual);
    EXPECT_EQ(before, widths());
}

TEST_F(ReportTabs, AChangeOfATableOpensItsFieldAtItsChanges) {
    report().SelectTab(CTableView::Changes);
    CUGCtrl& changes = grid(tab());
    ASSERT_GT(changes.model()->rowCount(), 0);
    int row = 0;
    while (cell(tab(), row, 0) != "name")
        ASSERT_LT(++row, changes.model()->rowCount());
    const std::string before = cell(tab(), row, 2);
    changes.SelectRow(row);
    QTest::keyClick(&changes, Qt::Key_Return);
    EXPECT_EQ(m_sample.fields.at("customers/name"), report().GetSubject().selection.fieldId);
    EXPECT_EQ(CFieldView::Changes, report().GetCurrentTab());
    EXPECT_GT(rows(tab()), 0);
    // The choice of runs is that of the report.
    auto& since = *tab().findChild<QComboBox*>(QStringLiteral("sinceRun"));
    since.setCurrentIndex(2);
    Q_EMIT since.activated(2);
    ASSERT_TRUE(selectTable("customers"));
    EXPECT_EQ(CTableView::Changes, report().GetCurrentTab());
    EXPECT_EQ(2, tab().findChild<QComboBox*>(QStringLiteral("sinceRun"))->currentIndex());
}

TEST_F(ReportTabs, TheNavigatorStepsThroughTheTabsAsWell) {
    auto& tree = *m_view->findChild<QTreeView*>(QStringLiteral("page0"));
    activate(*m_view);
    m_view->SetInternalFocus();
    ASSERT_EQ(&tree, QApplication::focusWidget());
    const QModelIndex selected = tree.currentIndex();
    QTest::keyClick(&tree, Qt::Key_PageDown, Qt::ControlModifier);
    EXPECT_EQ(1, report().GetCurrentTab());
    QTest::keyClick(&tree, Qt::Key_PageUp, Qt::ControlModifier);
    QTest::keyClick(&tree, Qt::Key_PageUp, Qt::ControlModifier);
    EXPECT_EQ(report().GetTabCount() - 1, report().GetCurrentTab());
    EXPECT_EQ(&tree, QApplication::focusWidget()) << "so that it can be pressed again";
    EXPECT_EQ(selected, tree.currentIndex());
}

/// The contrast ratio of two colours, 1 to 21 (WCAG 2.1).
double contrast(const QColor& a, const QColor& b) {
    const auto luminance = [](const QColor& color) {
        const auto part = [](double c) { return c <= 0.03928 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4); };
        return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
    };
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return std::max(first, second) / std::min(first, second);
}

TEST_F(ReportTabs, TheStripIsWhiteWithTwoLinesBelowAndGreyFacesOutlinedInBlack) {
    m_view->setPalette(lightPalette());
    report().SelectTab(1);
    const QRect resting = strip().tabRect(0);
    ASSERT_EQ(QPoint(0, 0), strip().pos());
    ASSERT_EQ(report().width(), strip().width());
    ASSERT_EQ(22, strip().height());
    const QImage image = strip().grab().toImage();
    const QColor lightGrey(223, 223, 223);
    for (const int x : {resting.left() + 3, resting.center().x(), image.width() - 1}) {
        EXPECT_EQ(QColor(127, 127, 127), image.pixelColor(x, 20)) << x;
        EXPECT_EQ(lightGrey, image.pixelColor(x, 21)) << x;
    }
    EXPECT_EQ(QColor(Qt::white), image.pixelColor(image.width() - 1, 0));
    EXPECT_EQ(QColor(Qt::white), image.pixelColor(image.width() - 1, 19));
    for (const int index : {0, 1, 4}) {
        const QRect face = strip().tabRect(index);
        EXPECT_EQ(lightGrey, image.pixelColor(face.left() + 3, 10)) << index;
        EXPECT_EQ(QColor(Qt::black), image.pixelColor(face.left(), 10)) << index;
        EXPECT_EQ(QColor(Qt::black), image.pixelColor(face.right() + 1, 10)) << index;
    }
    EXPECT_EQ(QColor(Qt::black), image.pixelColor(resting.center().x(), 2));
    EXPECT_EQ(QColor(Qt::white), image.pixelColor(resting.center().x(), 1));
    EXPECT_EQ(QColor(Qt::black), image.pixelColor(strip().tabRect(1).center().x(), 0));
}

TEST_F(ReportTabs, InADarkSchemeTheStripIsDarkAndCanBeRead) {
    m_view->setPalette(darkPalette());
    const QRect face = strip().tabRect(1);
    const QImage image = strip().grab().toImage();
    const QColor ground = image.pixelColor(face.left() + 3, 10);
    const QColor beside = image.pixelColor(image.width() - 1, 0);
    EXPECT_LT(beside.lightness(), 64);
    EXPECT_LT(ground.lightness(), 96);
    EXPECT_NE(beside, ground);
    EXPECT_NE(beside, image.pixelColor(image.width() - 1, 20));
    EXPECT_NE(ground, image.pixelColor(face.left(), 10));
    double best = 1;
    for (int x = face.left() + 4; x < face.right() - 4; ++x) {
        for (int y = 5; y < 18; ++y)
            best = std::max(best, contrast(ground, image.pixelColor(x, y)));
    }
    EXPECT_GT(best, 7);
}

TEST_F(ReportTabs, TabsThatHaveNoRoomAreInAMenuAndCaptionsAreNeverCut) {
    ASSERT_TRUE(selectField("customers", "city"));
    m_view->SetRatios({0.1, 0.2});
    auto& more = *strip().findChild<QToolButton*>(QStringLiteral("moreTabs"));
    auto& menu = *strip().findChild<QMenu*>(QStringLiteral("otherTabs"));
    const int last = strip().count() - 1;
    const auto visibleTabs = [this] {
        QCoreApplication::processEvents();
        int shown = 0;
        for (int i = 0; i < strip().count(); ++i) {
            if (!strip().isTabVisible(i))
                continue;
            ++shown;
            QFont smallest = strip().font();
            smallest.setPixelSize(11);
            EXPECT_GE(strip().tabRect(i).width(), QFontMetrics(smallest).horizontalAdvance(strip().tabText(i))) << i;
            EXPECT_LE(strip().tabRect(i).right(), strip().width()) << i;
        }
        EXPECT_TRUE(strip().isTabVisible(strip().currentIndex()));
        return shown;
    };
    m_view->resize(1600, 600);
    EXPECT_EQ(strip().count(), visibleTabs());
    const int roomy = strip().tabRect(last).right();
    EXPECT_FALSE(more.isVisible());
    m_view->resize(1600 - (strip().width() - roomy) - 60, 600);
    EXPECT_EQ(strip().count(), visibleTabs()) << "closer together";
    EXPECT_LT(strip().tabRect(last).right(), roomy);

    report().SelectTab(2);
    for (const int width : {750, 600, 400}) {
        m_view->resize(width, 600);
        const int shown = visibleTabs();
        EXPECT_LT(shown, strip().count()) << width;
        ASSERT_TRUE(more.isVisible()) << width;
        EXPECT_EQ(strip().count() - shown, more.text().toInt());
        EXPECT_EQ(2, report().GetCurrentTab());
    }
    EXPECT_EQ(Qt::NoFocus, more.focusPolicy());
    EXPECT_EQ("More tabs", toUtf8(more.accessibleName()));

    // By the keyboard: Down opens the menu, whose last entry is the last tab.
    activate(*m_view);
    strip().setFocus();
    press(Qt::Key_Down);
    ASSERT_TRUE(menu.isVisible());
    QTest::keyClick(&menu, Qt::Key_Up);
    QTest::keyClick(&menu, Qt::Key_Return);
    EXPECT_EQ(last, report().GetCurrentTab());
    (void)visibleTabs();
    // By the mouse, and the arrow keys reach tabs in the menu too.
    QTest::mouseClick(&more, Qt::LeftButton);
    ASSERT_TRUE(menu.isVisible());
    int firstHidden = 0;
    while (strip().isTabVisible(firstHidden))
        ++firstHidden;
    EXPECT_EQ(strip().tabText(firstHidden), menu.actions().front()->text());
    menu.close();
    activate(*m_view);
    strip().setFocus();
    press(Qt::Key_Left);
    EXPECT_EQ(last - 1, report().GetCurrentTab());
    (void)visibleTabs();
    m_view->resize(1600, 600);
    EXPECT_EQ(strip().count(), visibleTabs());
    EXPECT_FALSE(more.isVisible());
}

TEST_F(ReportTabs, TheKeyboardGoesFromTheStripOverTheButtonsToTheContents) {
    // For each tab, the controls that the Tab key reaches between the strip and the last stop of the view.
    const auto stops = [this] {
        std::vector<std::string> names;
        QWidget* last = m_view->GetLastTabStop();
        QWidget* at = &strip();
        at->setFocus();
        for (int i = 0; i < 20 && at; ++i) {
            const QString name = at->objectName();
            names.push_back(name.isEmpty() ? at->metaObject()->className() : toUtf8(name));
            if (at == last)
                return names;
            QTest::keyClick(at, Qt::Key_Tab);
            at = QApplication::focusWidget();
        }
        names.emplace_back("and the last stop never");
        return names;
    };
    activate(*m_view);
    // The view begins with the navigator's tree; the row of its pages comes between it and the strip.
    m_view->GetFirstTabStop()->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ("Navigator pages", toUtf8(QApplication::focusWidget()->accessibleName()));
    press(Qt::Key_Tab);
    EXPECT_EQ(&strip(), QApplication::focusWidget());
    const auto sentence = ElementsAre("tabStrip", "detailsButton", "detachButton");
    const auto rules = ElementsAre("tabStrip", "detailsButton", "detachButton", "suggestRules");
    const auto noAlerts = ElementsAre("tabStrip", "detailsButton", "detachButton", "addAlert");
    const auto list = ElementsAre("tabStrip", "detailsButton", "detachButton", "tavix::CUGCtrl");
    const auto pictured =
        ElementsAre("tabStrip", "detailsButton", "detachButton", "tavix::CUGCtrl", "pictureToggle", "drawing");
    const auto searched = ElementsAre("tabStrip", "detailsButton", "detachButton", "search", "editFilter",
                                      "tavix::CUGCtrl", "pictureToggle", "drawing");
    const auto notes = ElementsAre("tabStrip", "detailsButton", "detachButton", "addButton", "editButton",
                                   "deleteButton", "categoriesButton", "notes", "noteText");
    const auto noNotes =
        ElementsAre("tabStrip", "detailsButton", "detachButton", "addButton", "categoriesButton", "addFirst");
    EXPECT_THAT(stops(), list);
    report().SelectTab(CTableView::CustomMetrics);
    EXPECT_THAT(stops(), sentence);
    report().SelectTab(CTableView::Alerts);
    EXPECT_THAT(stops(), noAlerts);
    report().SelectTab(CTableView::BusinessRules);
    EXPECT_THAT(stops(), rules);
    report().SelectTab(CTableView::Visualizations);
    EXPECT_THAT(stops(), list);
    report().SelectTab(CTableView::Notes);
    EXPECT_THAT(stops(), notes);
    ASSERT_TRUE(selectTable("orders"));
    EXPECT_THAT(stops(), noNotes);
    ASSERT_TRUE(selectField("customers", "balance"));
    for (int index = 0; index < CFieldView::KeyAnalysis; ++index) {
        report().SelectTab(index);
        if (index == CFieldView::Frequency || index == CFieldView::Patterns)
            EXPECT_THAT(stops(), searched) << index;
        else
            EXPECT_THAT(stops(), pictured) << index;
    }
    report().SelectTab(CFieldView::KeyAnalysis);
    EXPECT_THAT(stops(), sentence);
    report().SelectTab(CFieldView::Notes);
    EXPECT_THAT(stops(), notes);

    // A detached window has no buttons; its last stop is the contents or the strip itself.
    CReportView& torn = detach().GetView();
    EXPECT_EQ("noteText", toUtf8(torn.GetLastTabStop()->objectName()));
    torn.SelectTab(CFieldView::KeyAnalysis);
    EXPECT_EQ(&strip(torn), torn.GetLastTabStop());
}

TEST_F(ReportTabs, TheNumberOfRaisedAlertsIsBesideTheCaptionWhichStays) {
    const auto accessible = [this] { return toUtf8(strip().accessibleTabName(CTableView::Alerts)); };
    const auto change = [this](const std::function<void()>& act) {
        act();
        m_view->Broadcast(nullptr, RefreshHint::AlertsChanged, 0);
    };
    const int usual = strip().tabRect(CTableView::Alerts).width();
    EXPECT_EQ("", accessible());
    int first = -1;
    change([&] { first = addAlert(m_sample, "customers/name", MetricId::NullCount, {.value1 = 227}); });
    EXPECT_EQ("Alerts", toUtf8(strip().tabText(CTableView::Alerts)));
    EXPECT_EQ("Alerts, Raised: 1 warning", accessible());
    EXPECT_GT(strip().tabRect(CTableView::Alerts).width(), usual);
    change([&] {
        addAlert(m_sample, "customers/remark", MetricId::NullCount, {.value1 = 1, .level = AlertLevel::Error});
        addAlert(m_sample, "suppliers/id", MetricId::Count, {.value1 = 1});
    });
    EXPECT_EQ("Raised: 1 error, 1 warning", toUtf8(strip().tabToolTip(CTableView::Alerts)));
    change([&] { muteAlert(m_sample, first); });
    EXPECT_EQ("Alerts, Raised: 1 error, 1 muted", accessible());
    ASSERT_TRUE(selectTable("suppliers"));
    EXPECT_EQ("Alerts, Raised: 1 warning", accessible());
    ASSERT_TRUE(selectTable("orders"));
    EXPECT_EQ("", accessible());
    EXPECT_EQ(usual, strip().tabRect(CTableView::Alerts).width());
}

} // namespace
} // namespace tavix
