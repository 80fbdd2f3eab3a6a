#include "doc/CReportPane.h"
#include "frame/ui/tests/ViewOverSample.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QTableView>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

constexpr int kToggle = 32810;

class PanesOverSample : public testing::ViewOverSample {
  protected:
    PanesOverSample() { m_view->resize(1000, 500); }

    void makeViewAgain() {
        m_view.reset();
        makeView();
        m_view->resize(1000, 500);
    }
    bool toggle() { return m_view->GetTavixMain().Execute(kToggle); }
    CommandState toggleState() { return m_view->GetTavixMain().Update(kToggle); }
    QWidget* pane(const char* name) { return m_view->findChild<QWidget*>(QLatin1String(name)); }
    QWidget* info() { return pane("tableInformation"); }
    std::string infoText() { return toUtf8(info()->findChild<QPlainTextEdit*>()->toPlainText()); }
    void press(int x) { QTest::mousePress(m_view.get(), Qt::LeftButton, {}, {x, 100}); }
    void move(int x) { QTest::mouseMove(m_view.get(), {x, 100}); }
    void release(int x) { QTest::mouseRelease(m_view.get(), Qt::LeftButton, {}, {x, 100}); }
    std::vector<int> spans() {
        std::vector<int> all;
        for (const QWidget* each : {pane("navigator"), pane("reportPane"), info()}) {
            if (each) {
                EXPECT_EQ(each->height(), m_view->height());
                all.push_back(each->x());
                all.push_back(each->width());
            }
        }
        return all;
    }
};

TEST_F(PanesOverSample, ABarFollowsTheMouseAndTheRatioLastsOverResizes) {
    EXPECT_THAT(spans(), ElementsAre(0, 248, 255, 745));
    press(250);
    ASSERT_TRUE(pane("ghostBar")->isVisible());
    move(402);
    EXPECT_EQ(pane("ghostBar")->geometry(), QRect(399, 0, 6, 500));
    EXPECT_THAT(spans(), ElementsAre(0, 248, 255, 745)) << "panes wait for the button";
    move(400);
    release(400);
    EXPECT_FALSE(pane("ghostBar")->isVisible());
    EXPECT_THAT(spans(), ElementsAre(0, 398, 405, 595));
    m_view->resize(500, 300);
    EXPECT_THAT(spans(), ElementsAre(0, 198, 205, 295));
    m_view->resize(1000, 500);

    press(400);
    move(1);
    release(1);
    EXPECT_EQ(0.003, m_view->GetRatios().left);
    EXPECT_THAT(spans(), ElementsAre(0, 1, 8, 992));

    makeViewAgain();
    EXPECT_THAT(spans(), ElementsAre(0, 1, 8, 992)) << "remembered";
}

TEST_F(PanesOverSample, TheNavigatorKeepsItsWidthOnWideScreensUntilItIsMoved) {
    m_view->resize(2560, 500);
    EXPECT_THAT(spans(), ElementsAre(0, 318, 325, 2235));
    toggle();
    makeViewAgain();
    m_view->resize(1600, 500);
    EXPECT_EQ(318, pane("navigator")->width()) << "other things were remembered, its ratio was not";
    press(320);
    move(402);
    release(402);
    EXPECT_NEAR(400, pane("navigator")->width(), 1);
    m_view->resize(3200, 500);
    EXPECT_NEAR(802, pane("navigator")->width(), 2) << "the user's ratio";
    makeViewAgain();
    m_view->resize(1600, 500);
    EXPECT_NEAR(400, pane("navigator")->width(), 1);
}

TEST_F(PanesOverSample, ColoursAreOfferedOnlyWhereTheProgramFollowsThem) {
    const auto choose = [this](std::optional<ColorScheme> scheme) {
        bool isOffered = false;
        inNextDialog([&](QDialog& dialog) {
            auto* colors = dialog.findChild<QComboBox*>(QStringLiteral("ColorScheme"));
            isOffered = colors != nullptr;
            if (colors && scheme)
                colors->setCurrentIndex(colors->findData(static_cast<int>(*scheme)));
            dialog.accept();
        });
        execute(CommandId::Options);
        return isOffered;
    };
    EXPECT_FALSE(choose({}));
    std::vector<ColorScheme> chosen;
    m_view->SetColorSchemes([] { return true; }, [&chosen](ColorScheme scheme) { chosen.push_back(scheme); });
    EXPECT_TRUE(choose(ColorScheme::Dark));
    EXPECT_TRUE(choose({}));
    EXPECT_THAT(chosen, ElementsAre(ColorScheme::Dark)) << "only when it changes";
}

TEST_F(PanesOverSample, EscapeLeavesADraggedBarWhereItWas) {
    m_view->SetInternalFocus();
    press(250);
    move(402);
    QTest::keyClick(m_view->GetFirstTabStop(), Qt::Key_Escape);
    EXPECT_FALSE(pane("ghostBar")->isVisible());
    move(410);
    release(410);
    EXPECT_THAT(spans(), ElementsAre(0, 248, 255, 745));
}

TEST_F(PanesOverSample, TheCursorTellsWhereABarIs) {
    move(251);
    EXPECT_EQ(Qt::SizeHorCursor, m_view->cursor().shape());
    EXPECT_EQ(Qt::ArrowCursor, pane("navigator")->cursor().shape());
    move(254);
    EXPECT_EQ(Qt::ArrowCursor, m_view->cursor().shape());
    press(254);
    EXPECT_FALSE(pane("ghostBar")->isVisible());
    release(254);
}

TEST_F(PanesOverSample, BarsArePaintedInTheirThreeColours) {
    toggle();
    QPalette palette = m_view->palette();
    palette.setColor(QPalette::Window, Qt::red);
    palette.setColor(QPalette::Light, Qt::green);
    palette.setColor(QPalette::Mid, Qt::blue);
    m_view->setPalette(palette);
    const QImage image = m_view->grab().toImage();
    for (const int bar : {248, 796}) {
        for (const int y : {0, 250, 499}) {
            EXPECT_EQ(QColor(Qt::green), image.pixelColor(bar, y));
            for (int x = bar + 1; x < bar + 5; ++x)
                EXPECT_EQ(QColor(Qt::red), image.pixelColor(x, y));
            EXPECT_EQ(QColor(Qt::blue), image.pixelColor(bar + 5, y));
        }
    }
}

TEST_F(PanesOverSample, TheInformationComesGoesAndKeepsItsWidth) {
    ASSERT_TRUE(load());
    EXPECT_EQ(nullptr, info());
    EXPECT_EQ((CommandState{true, true, false}), toggleState());
    ASSERT_TRUE(m_view->SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    ASSERT_TRUE(toggle());
    EXPECT_EQ((CommandState{true, true, true}), toggleState());
    EXPECT_THAT(spans(), ElementsAre(0, 248, 255, 541, 803, 197));
    EXPECT_THAT(infoText(), StartsWith("Name: customers\nType: Table\nSchema: public\n"));
    ASSERT_TRUE(m_view->SelectTable("Warehouse", "ODBC", "", "dbo", "suppliers"));
    EXPECT_THAT(infoText(), StartsWith("Name: suppliers\n"));

    press(800);
    move(700);
    release(700);
    EXPECT_THAT(spans(), ElementsAre(0, 248, 255, 441, 703, 297));
    QTest::mouseClick(info()->findChild<QToolButton*>(), Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_EQ(nullptr, info());
    EXPECT_THAT(spans(), ElementsAre(0, 248, 255, 745));
    EXPECT_FALSE(toggleState().checked);
    toggle();
    EXPECT_THAT(spans(), ElementsAre(0, 248, 255, 441, 703, 297));

    EXPECT_TRUE(m_view->GetTavixMain().Execute(40005));
    EXPECT_EQ(273, info()->width());
    navigator().ShowPage(NavigatorPage::Collections);
    EXPECT_EQ((CommandState{true, false, true}), toggleState());
    EXPECT_TRUE(toggle());
    EXPECT_TRUE(info()) << "disabled";
    m_view->GetTavixMain().Execute(57600);
    EXPECT_EQ("", infoText());

    makeViewAgain();
    EXPECT_EQ(nullptr, info()) << "no table is loaded";
    ASSERT_TRUE(load());
    ASSERT_TRUE(info()) << "as the user left it";
    EXPECT_EQ(273, info()->width());
}

TEST_F(PanesOverSample, ANarrowWindowAndAWideNavigatorLeaveNoPaneBelowNothing) {
    m_view->SetRatios({0.95, 0.2});
    toggle();
    EXPECT_GT(spans()[1], 700);
    EXPECT_EQ(796 + kSplitterWidth + 1, spans()[4]);
    EXPECT_LT(spans()[1], 796) << "the left bar can still be reached";
    for (const int width : {40, 12, 3, 1}) {
        m_view->resize(width, 100);
        for (const int number : {1, 3, 5})
            EXPECT_GE(spans()[static_cast<std::size_t>(number)], 0);
    }
    EXPECT_THAT(spans(), ElementsAre(0, 0, 5, 0, 4, 0));
}

TEST_F(PanesOverSample, FiguresAreShownInTheFontThatWasChosen) {
    ASSERT_TRUE(load());
    SettingsStore& settings = m_view->GetTavixDoc().GetSettings();
    ASSERT_TRUE(settings.write("TAVIX", "StatFontSize", "145"));
    ASSERT_TRUE(settings.write("TAVIX", "StatFontIsBold", "y"));
    ASSERT_TRUE(m_view->SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    m_view->Broadcast(RefreshHint::OptionsChanged);
    const QFont font = pane("standardMetrics")->findChild<QTableView*>()->font();
    EXPECT_DOUBLE_EQ(font.pointSizeF(), 14.5);
    EXPECT_TRUE(font.bold());
}

TEST_F(PanesOverSample, PaneOrderOfHintsCommandsKeyboardAndEnd) {
    ASSERT_TRUE(load());
    toggle();
    const auto widget = [](auto* item) { return dynamic_cast<QWidget*>(item); };
    std::vector<QWidget*> told;
    for (CRefreshItem* item : m_view->RefreshOrder())
        told.push_back(widget(item));
    EXPECT_THAT(told, ElementsAre(m_view.get(), pane("navigator"), info(), pane("emptyView")));
    std::vector<QWidget*> asked;
    for (CommandTarget* target : m_view->CommandOrder())
        asked.push_back(widget(target));
    EXPECT_THAT(asked, ElementsAre(pane("navigator"), info(), pane("emptyView")));
    EXPECT_EQ(-1, m_view->GetItemCode());
    EXPECT_FALSE(m_view->GetTavixMain().HasCurrentItem());
    EXPECT_EQ(nullptr, m_view->GetReportPane().GetLastTabStop());
    ASSERT_TRUE(m_view->SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    EXPECT_EQ(0, m_view->GetItemCode());
    EXPECT_TRUE(m_view->GetTavixMain().HasCurrentItem());

    std::string stops;
    for (QWidget* next = m_view->nextInFocusChain(); next != m_view.get(); next = next->nextInFocusChain()) {
        if (!(next->focusPolicy() & Qt::TabFocus) || !next->isVisible())
            continue;
        const char letter = pane("navigator")->isAncestorOf(next) ? 'n' : info()->isAncestorOf(next) ? 'i' : 'r';
        if (stops.empty() || stops.back() != letter)
            stops += letter;
    }
    EXPECT_EQ("nir", stops);

    for (const int later : {57607, 32774, 32783, 32787, 32839, 32843, 32871, 32873, 32875, 32877, 32909}) {
        EXPECT_FALSE(m_view->GetTavixMain().Execute(later)) << later;
        EXPECT_EQ(CommandState(), m_view->GetTavixMain().Update(later)) << later;
    }

    std::vector<std::string> gone;
    for (const char* name : {"tableView", "tableInformation", "navigator"})
        QObject::connect(pane(name), &QObject::destroyed, [&gone, name] { gone.emplace_back(name); });
    m_view.reset();
    EXPECT_THAT(gone, ElementsAre("navigator", "tableInformation", "tableView"));
}

} // namespace
} // namespace tavix
