#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/tests/TestSite.h"
#include "drill/DrillTexts.h"
#include "grid/ui/CUGCtrl.h"
#include "report/ReportTables.h"
#include "settings/MetricDisplay.h"
#include "settings/Settings.h"
#include "support/LongList.h"
#include "support/SampleAlerts.h"
#include "support/SampleRepository.h"
#include "tabs/MetricDoor.h"
#include "tabs/ui/CTabStdMet.h"

#include <QApplication>
#include <QHeaderView>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

class StdMetTab : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_TRUE(writeFirstStartDefaults(*m_settings)); }

    void open(const std::string& path, int job, int table, const std::string& dataSource) {
        ASSERT_TRUE(m_site.document.OpenReport(path, job));
        m_subject.selection.kind = ReportSelection::Kind::Table;
        m_subject.selection.table = m_subject.table = *findTable(*m_site.document.GetViewer(), table, dataSource);
        m_tab = std::make_unique<CTabStdMet>(m_site, m_subject, false);
        m_tab->resize(900, 400);
        m_tab->show();
    }
    void openCustomers() {
        const auto sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
        m_name = sample.fields.at("customers/name");
        open(sample.path, sample.salesJob, sample.tables.at("customers"), "Warehouse");
    }
    CUGCtrl& grid() { return *m_tab->findChild<CUGCtrl*>(); }
    int columnOf(const std::string& heading) {
        for (int column = 0; column < grid().model()->columnCount(); ++column) {
            if (toUtf8(grid().model()->headerData(column, Qt::Horizontal).toString()) == heading)
                return column;
        }
        ADD_FAILURE() << heading;
        return 0;
    }
    /// Makes the field's cell in that column current and presses Enter.
    void enter(int fieldId, const std::string& heading) {
        m_tab->SelectMetric(fieldId, -1);
        const int row = static_cast<int>(grid().GetCurrentRow());
        grid().setCurrentIndex(grid().model()->index(row, columnOf(heading)));
        QTest::keyClick(&grid(), Qt::Key_Return);
    }
    /// The source of the sample is not there, so its rows cannot be opened.
    void expectUnavailable(const KvbString& value) {
        PrViewer& viewer = *m_site.document.GetViewer();
        ASSERT_FALSE(viewer.drillDown(m_name, value, false, nullptr, nullptr));
        m_messages.expectWarn(std::string(kDrillUnavailable) + "\n\n" + viewer.getErrorString().str(),
                              std::string(kDrillErrorCaption));
    }

    testing::TempFolder m_folder;
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    ReportSubject m_subject;
    std::unique_ptr<CTabStdMet> m_tab;
    int m_name = -1;
};

TEST_F(StdMetTab, EnterOpensTheRowsOfAFigureAndElsewhereTheField) {
    openCustomers();
    enter(m_name, "Field Name");
    enter(m_name, "Percent Null");
    EXPECT_THAT(m_site.selectedFields, ElementsAre(m_name, m_name));

    expectUnavailable({});
    enter(m_name, "Null Count");
    EXPECT_EQ(0U, m_messages.pending());
    expectUnavailable("   ");
    enter(m_name, "Blank Count");
    EXPECT_EQ(0U, m_messages.pending());
    EXPECT_EQ(2U, m_site.selectedFields.size());

    auto* drill = m_tab->findChild<QAction*>(QStringLiteral("drillThrough"));
    EXPECT_TRUE(drill->isEnabled());
    grid().setCurrentIndex(grid().model()->index(0, 0));
    EXPECT_FALSE(drill->isEnabled());
}

TEST_F(StdMetTab, SeveralBlankValuesAreListedInTheField) {
    const auto list = testing::LongList::build(m_folder.file("blanks.tavix"), 'S', {{"x", 7}, {" ", 3}, {"  ", 2}});
    open(list.path, list.job, list.table, "Warehouse");
    enter(list.field, "Blank Count");
    EXPECT_THAT(m_site.selectedFields, ElementsAre(list.field));
    EXPECT_EQ(kBlankFilter, m_site.document.GetFieldFilters().Get(list.field, DistributionKind::Frequency));
    EXPECT_EQ(1, m_site.document.GetTab(ReportPaneKind::Field)) << "the frequency distribution";
}

TEST_F(StdMetTab, TheMetricOfTheLinesIsChosenInTheMenuAndRemembered) {
    openCustomers();
    const int lines = columnOf("Last Runs");
    const auto metric = [this, lines] {
        return toUtf8(grid().model()->headerData(lines, Qt::Horizontal, Qt::AccessibleTextRole).toString());
    };
    EXPECT_EQ("Last Runs Percent Null", metric());
    const auto choose = [this](QMenu& menu, const QString& text) {
        for (QAction* action : menu.actions()) {
            if (action->text() == text && action->isEnabled()) {
                action->trigger();
                return;
            }
        }
        ADD_FAILURE() << toUtf8(text);
    };
    {
        QMenu menu;
        grid().AddHeadingEntries(menu, columnOf("Null Count"));
        choose(menu, QStringLiteral("Show the &Last Runs of Null Count"));
    }
    EXPECT_EQ("Last Runs Null Count", metric());
    EXPECT_EQ("2", readText(*m_settings, Setting::TrendMetric));
    {
        QMenu menu;
        grid().AddHeadingEntries(menu, lines);
        ASSERT_EQ(2, menu.actions().size()) << "a separator and the metrics";
        choose(*menu.actions().back()->menu(), QStringLiteral("Mean"));
    }
    EXPECT_EQ("Last Runs Mean", metric());
    QMenu words;
    grid().AddHeadingEntries(words, columnOf("Actual Type"));
    EXPECT_TRUE(words.isEmpty()) << "a word has no line";
}

TEST_F(StdMetTab, AFigureShowsWhatItsAlertsSayAndTheListMakesNewOnes) {
    const auto sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    const int alert = testing::addAlert(sample, "customers/name", MetricId::NullCount, {.value1 = 227});
    m_name = sample.fields.at("customers/name");
    open(sample.path, sample.salesJob, sample.tables.at("customers"), "Warehouse");
    m_site.listeners = {m_tab.get()};
    m_tab->SelectMetric(m_name, -1);
    const auto figure = [this] {
        return grid().model()->index(static_cast<int>(grid().GetCurrentRow()), columnOf("Null Count"));
    };
    const auto said = [&] { return toUtf8(figure().data(Qt::AccessibleTextRole).toString()); };
    EXPECT_EQ("228, alert raised, warning", said());
    grid().setCurrentIndex(figure());
    testing::muteAlert(sample, alert);
    m_site.Broadcast(nullptr, RefreshHint::AlertsChanged, 0);
    EXPECT_EQ("228, alert, muted", said());
    EXPECT_EQ(figure(), grid().currentIndex()) << "where the user was";

    // Insert on a figure asks for the alert, elsewhere it does nothing.
    QApplication::setActiveWindow(m_tab.get());
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_tab.get()));
    grid().setFocus();
    std::string title;
    const auto press = [&] {
        title.clear();
        QTimer::singleShot(0, qApp, [&title] {
            if (QWidget* dialog = QApplication::activeModalWidget()) {
                title = toUtf8(dialog->windowTitle());
                dialog->close();
            }
        });
        QTest::keyClick(&grid(), Qt::Key_Insert);
        QCoreApplication::processEvents();
        return title;
    };
    grid().setCurrentIndex(figure());
    EXPECT_EQ("Add Alert", press());
    grid().setCurrentIndex(grid().model()->index(static_cast<int>(grid().GetCurrentRow()), 0));
    EXPECT_EQ("", press());
}

} // namespace
} // namespace tavix
