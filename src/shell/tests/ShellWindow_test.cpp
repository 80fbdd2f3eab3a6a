#include "base/ui/Theme.h"
#include "shell/tests/ShellOverSample.h"
#include "support/RunScript.h"
#include "support/SampleAlerts.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeWidget>

#include <gmock/gmock.h>

namespace tavix::shell {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

TEST_F(ShellOverSample, ARepositoryShowsItsReportsAndEnterOpensOne) {
    EXPECT_EQ("Tavix", title());
    ASSERT_TRUE(open(m_sample.path));
    EXPECT_EQ("sample.tavix - Tavix", title());
    auto* list = m_window.findChild<QTreeWidget*>();
    ASSERT_EQ(2, list->topLevelItemCount());
    list->setCurrentItem(list->findItems(QStringLiteral("Sales"), Qt::MatchExactly).front());
    QTest::keyClick(list, Qt::Key_Return);
    EXPECT_THAT(title(), ::testing::StartsWith("Sales - "));
    EXPECT_THAT(title(), ::testing::EndsWith(" - Tavix"));
    EXPECT_THAT(m_messages.texts, ElementsAre());
}

TEST_F(ShellOverSample, AReportThatTheViewerOpenedItselfIsTheShellsToo) {
    class Connection final : public Veldra::Solenne::Tavix::TavixConnection {
      public:
        explicit Connection(std::string path) : m_path(std::move(path)) {}
        [[nodiscard]] std::string GetName() const override { return "Sample"; }
        [[nodiscard]] std::string GetKind() const override { return "SQLite"; }
        [[nodiscard]] std::string GetConnectionString() const override { return m_path; }

      private:
        std::string m_path;
    };
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    const Connection connection(m_sample.path);
    // As the viewer does it for an alert of another report.
    ASSERT_TRUE(m_host.LoadReportForJob("Inventory", m_sample.inventoryJob, &connection));
    EXPECT_THAT(title(), ::testing::StartsWith("Inventory - "));
    for (QAction* action : m_window.findChildren<QAction*>()) {
        if (action->shortcut() == QKeySequence(Qt::Key_F5))
            action->trigger();
    }
    EXPECT_THAT(title(), ::testing::StartsWith("Inventory - "));
    EXPECT_THAT(m_messages.texts, ElementsAre());
}

TEST_F(ShellOverSample, TheColoursOfTheOptionsAreTakenAtOnceByEveryWindowAndKept) {
    const QPalette before = QApplication::palette();
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    m_host.ExecuteCommand(static_cast<int>(CommandId::DetachTabs));
    const auto choose = [this](ColorScheme scheme) {
        QTimer::singleShot(0, qApp, [scheme] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            auto* colors = dialog->findChild<QComboBox*>(QStringLiteral("ColorScheme"));
            ASSERT_TRUE(colors);
            colors->setCurrentIndex(colors->findData(static_cast<int>(scheme)));
            dialog->accept();
        });
        m_host.ExecuteCommand(static_cast<int>(CommandId::Options));
    };
    const auto darkWindows = [] {
        int dark = 0;
        for (const QWidget* window : QApplication::topLevelWidgets()) {
            if (window->isVisible())
                dark += isDark(window->palette()) ? 1 : 0;
        }
        return dark;
    };
    // Drawn anew, a window looks as if it had had the colours from the start.
    choose(ColorScheme::Light);
    EXPECT_EQ(0, darkWindows());
    const QImage light = m_window.grab().toImage();
    choose(ColorScheme::Dark);
    EXPECT_EQ(2, darkWindows()) << "the shell's and the detached one";
    EXPECT_EQ(ColorScheme::Dark, m_host.GetColorScheme());
    EXPECT_NE(light, m_window.grab().toImage());
    choose(ColorScheme::Light);
    EXPECT_EQ(light, m_window.grab().toImage());
    QApplication::setPalette(before);
}

TEST_F(ShellOverSample, TheWindowMenuListsTheSeparateWindows) {
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    QMenu* menu = nullptr;
    for (const QAction* each : m_window.menuBar()->actions()) {
        if (toUtf8(each->text()) == "&Window")
            menu = each->menu();
    }
    ASSERT_TRUE(menu);
    const auto entries = [menu] {
        Q_EMIT menu->aboutToShow();
        std::vector<std::string> texts;
        for (const QAction* action : menu->actions())
            texts.push_back(toUtf8(action->text()) + (action->isEnabled() ? "" : " -"));
        return texts;
    };
    EXPECT_THAT(entries(), ElementsAre("No separate windows -", "", "Close &All -"));
    ASSERT_TRUE(m_host.SelectTable("Warehouse", "ODBC", "crm", "public", "customers"));
    m_host.ExecuteCommand(static_cast<int>(CommandId::DetachTabs));
    EXPECT_THAT(entries(), ElementsAre("&1  customers", "", "Close &All"));
    menu->actions().front()->trigger();
    EXPECT_TRUE(QTest::qWaitFor([] {
        return QApplication::activeWindow() && QApplication::activeWindow()->windowTitle() == QLatin1String("Table");
    }));
    menu->actions().back()->trigger();
    EXPECT_THAT(entries(), ElementsAre("No separate windows -", "", "Close &All -"));
}

TEST_F(ShellOverSample, TheViewMenuFollowsThePanes) {
    const auto action = [this](const char* text) {
        for (QAction* each : m_window.findChildren<QAction*>()) {
            if (toUtf8(each->text()) == text)
                return each;
        }
        throw std::runtime_error(std::string("no action ") + text);
    };
    QAction* information = action("Table Information");
    QAction* wider = action("Wider Table Information");
    EXPECT_FALSE(information->isEnabled());
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    EXPECT_TRUE(information->isEnabled());
    EXPECT_FALSE(information->isChecked());
    EXPECT_FALSE(wider->isEnabled());
    information->trigger();
    EXPECT_TRUE(information->isChecked());
    auto* pane = m_window.findChild<QWidget*>(QStringLiteral("tableInformation"));
    ASSERT_TRUE(pane);
    const int before = pane->width();
    wider->trigger();
    // Widths are rounded down to whole pixels.
    EXPECT_NEAR(before + 24, pane->width(), 1);
    QTest::mouseClick(pane->findChild<QWidget*>(QStringLiteral("closeTableInformation")), Qt::LeftButton);
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_host.ExecuteUpdateUICommand(32810).Checked);
    information->trigger();
    EXPECT_TRUE(information->isChecked());
}

TEST_F(ShellOverSample, RunsAreListedNewestFirstAndFollowTheKeys) {
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    auto* runs = m_window.findChild<QComboBox*>();
    ASSERT_EQ(3, runs->count());
    EXPECT_EQ(0, runs->currentIndex());
    EXPECT_THAT(toUtf8(runs->itemText(1)), HasSubstr("February"));
    EXPECT_THAT(toUtf8(runs->itemText(2)), HasSubstr("January"));
    runs->setFocus();
    QTest::keyClick(runs, Qt::Key_End);
    EXPECT_EQ(m_sample.salesRuns.front(), m_host.GetCurrentRun());
    EXPECT_THAT(title(), HasSubstr("January"));
}

TEST_F(ShellOverSample, WhatCannotBeOpenedIsSaidAndNothingIsLost) {
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    const std::string before = title();
    const std::string garbage = m_folder.file("garbage.tavix");
    QFile file(toQString(garbage));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("this is no repository, it only looks long enough to be one");
    file.close();
    EXPECT_FALSE(open(garbage));
    EXPECT_FALSE(open(m_folder.file("missing.tavix")));
    EXPECT_FALSE(m_window.openReportNamed("Nothing"));
    EXPECT_EQ(3U, m_messages.texts.size());
    EXPECT_EQ(before, title());
    EXPECT_TRUE(m_host.HasReport());
    EXPECT_THAT(ShellState(m_host.GetSettings()).recentRepositories(), ElementsAre(m_sample.path));
}

TEST_F(ShellOverSample, TheFolderStandsWithTheNameOfTheReport) {
    tavix::testing::runScript(m_sample.path,
                              "INSERT INTO folder(id, parent, name) VALUES (1, NULL, 'Shop'), (2, 1, 'Europe');"
                              "UPDATE job SET folder = 2 WHERE name = 'Sales'");
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Inventory"));
    EXPECT_THAT(title(), ::testing::StartsWith("Inventory - "));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    EXPECT_THAT(title(), ::testing::StartsWith("Shop/Europe/Sales - "));
}

// The setting "UseVault" names a folder; its repositories are listed beside the recent ones.
TEST_F(ShellOverSample, TheWelcomePageOffersTheRepositoriesOfTheVault) {
    const QString vault = toQString(m_folder.file("vault"));
    ASSERT_TRUE(QDir().mkdir(vault));
    ASSERT_TRUE(QFile::copy(toQString(m_sample.path), vault + QStringLiteral("/shared.tavix")));
    ASSERT_TRUE(QFile::copy(toQString(m_sample.path), vault + QStringLiteral("/notes.txt")));
    const auto lists = m_window.findChildren<QListWidget*>();
    ASSERT_EQ(2, lists.size());
    m_window.showWelcome();
    EXPECT_FALSE(lists[1]->isVisible());

    ASSERT_TRUE(m_host.GetSettings().write("TAVIX", "UseVault", toUtf8(vault)));
    m_window.showWelcome();
    ASSERT_TRUE(lists[1]->isVisible());
    ASSERT_EQ(1, lists[1]->count());
    EXPECT_THAT(toUtf8(lists[1]->item(0)->text()), ::testing::StartsWith("shared.tavix    "));
    lists[1]->setCurrentRow(0);
    QTest::keyClick(lists[1], Qt::Key_Return);
    EXPECT_EQ("shared.tavix - Tavix", title());

    for (const char* nowhere : {"/there/is/no/such/folder", "1", ""}) {
        ASSERT_TRUE(m_host.GetSettings().write("TAVIX", "UseVault", nowhere));
        m_window.showWelcome();
        EXPECT_FALSE(lists[1]->isVisible()) << nowhere;
    }
}

TEST_F(ShellOverSample, TheRunsAreChosenFromAList) {
    ASSERT_TRUE(open(m_sample.path));
    EXPECT_FALSE(m_host.ExecuteUpdateUICommand(static_cast<int>(CommandId::ChooseRun)).Enabled);
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    EXPECT_TRUE(m_host.ExecuteUpdateUICommand(static_cast<int>(CommandId::ChooseRun)).Enabled);
    const auto chooseIn = [this](bool accepts) {
        QTimer::singleShot(0, qApp, [accepts] {
            auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
            ASSERT_TRUE(dialog);
            EXPECT_EQ("Report Runs", toUtf8(dialog->windowTitle()));
            QTest::keyClick(dialog->findChild<QTreeWidget*>(), Qt::Key_End);
            QTest::keyClick(dialog->findChild<QTreeWidget*>(), accepts ? Qt::Key_Return : Qt::Key_Escape);
        });
        EXPECT_TRUE(m_host.ExecuteCommand(static_cast<int>(CommandId::ChooseRun)));
    };
    chooseIn(false);
    EXPECT_EQ(m_sample.salesRuns[2], m_host.GetCurrentRun());
    chooseIn(true);
    EXPECT_EQ(m_sample.salesRuns[0], m_host.GetCurrentRun());
}

TEST_F(ShellOverSample, NewLeadsBackToTheList) {
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    for (QAction* action : m_window.findChildren<QAction*>()) {
        if (action->data().toInt() == static_cast<int>(CommandId::New))
            action->trigger();
    }
    EXPECT_FALSE(m_host.HasReport());
    EXPECT_TRUE(m_window.findChild<QTreeWidget*>()->isVisible());
    EXPECT_EQ("sample.tavix - Tavix", title());
}

TEST_F(ShellOverSample, AClosedReportCanBeOpenedAgainAsItWas) {
    const auto action = [this](const QKeySequence& keys) {
        for (QAction* each : m_window.findChildren<QAction*>()) {
            if (each->shortcut() == keys)
                return each;
        }
        throw std::runtime_error("no such action");
    };
    ASSERT_TRUE(open(m_sample.path));
    QAction* close = action(QKeySequence(Qt::CTRL | Qt::Key_W));
    QAction* reopen = action(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_T));
    EXPECT_EQ("&Close Report", toUtf8(close->text()));
    EXPECT_FALSE(close->isEnabled());
    EXPECT_FALSE(reopen->isEnabled());
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    ASSERT_TRUE(m_host.SetCurrentRun(m_sample.salesRuns.at(1)));
    EXPECT_FALSE(reopen->isEnabled());
    close->trigger();
    EXPECT_FALSE(m_host.HasReport());
    auto* list = m_window.findChild<QTreeWidget*>();
    ASSERT_TRUE(list->isVisible());
    EXPECT_EQ("Sales", toUtf8(list->currentItem()->text(0)));
    EXPECT_EQ("&Reopen Sales", toUtf8(reopen->text()));
    ASSERT_TRUE(reopen->isEnabled());
    reopen->trigger();
    EXPECT_EQ("Sales", m_host.GetReportTitle());
    EXPECT_EQ(m_sample.salesRuns.at(1), m_host.GetCurrentRun());
    EXPECT_FALSE(reopen->isEnabled());
    // Opening another repository forgets the closed report.
    close->trigger();
    ASSERT_TRUE(open(m_sample.path));
    EXPECT_FALSE(reopen->isEnabled());
}

TEST_F(ShellOverSample, CommandsAreBackWhenADialogIsClosed) {
    ASSERT_TRUE(open(m_sample.path));
    // Handles events that a dialog of an earlier test has posted.
    QCoreApplication::processEvents();
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    QAction* options = nullptr;
    for (QAction* action : m_window.findChildren<QAction*>()) {
        if (action->data().toInt() == static_cast<int>(CommandId::Options))
            options = action;
    }
    ASSERT_TRUE(options && options->isEnabled());
    QTimer::singleShot(0, qApp, [options] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_TRUE(dialog);
        QCoreApplication::processEvents();
        EXPECT_FALSE(options->isEnabled());
        dialog->close();
    });
    // Not through the shell's action, as with the viewer's own keys.
    m_host.ExecuteCommand(static_cast<int>(CommandId::NoteCategories));
    QCoreApplication::processEvents();
    EXPECT_TRUE(options->isEnabled());
}

TEST(ShellState, RecentRepositoriesAreEightTheLatestFirst) {
    const auto store = makeMemorySettings();
    ShellState state(*store);
    for (int i = 0; i < 10; ++i)
        state.addRecentRepository("/r" + std::to_string(i));
    state.addRecentRepository("/r5");
    state.removeRecentRepository("/r8");
    EXPECT_THAT(state.recentRepositories(), ElementsAre("/r5", "/r9", "/r7", "/r6", "/r4", "/r3", "/r2"));
}

TEST_F(ShellOverSample, TheStatusLineCountsTheAlertsOfTheRun) {
    const auto& counts = *m_window.findChild<QToolButton*>(QStringLiteral("alertCounts"));
    ASSERT_TRUE(open(m_sample.path));
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    EXPECT_TRUE(counts.isHidden()) << "no alerts, no text";
    testing::addAlert(m_sample, "customers/name", MetricId::NullCount, {.value1 = 228});
    ASSERT_TRUE(m_window.openReportNamed("Sales"));
    EXPECT_EQ("no alert raised", toUtf8(counts.text()));
    ASSERT_TRUE(m_host.SetCurrentRun(m_sample.salesRuns.front()));
    EXPECT_EQ("1 warning", toUtf8(counts.text()));
    EXPECT_FALSE(counts.isHidden());
    m_window.showReports();
    EXPECT_TRUE(counts.isHidden());
}

} // namespace
} // namespace tavix::shell
