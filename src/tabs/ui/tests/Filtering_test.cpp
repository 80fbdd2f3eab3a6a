#include "access/PrViewer.h"
#include "base/tests/ScriptedMessages.h"
#include "base/tests/TempFolder.h"
#include "base/ui/QtText.h"
#include "doc/CommandIds.h"
#include "doc/tests/TestSite.h"
#include "filter/FilterMemory.h"
#include "filter/ui/CFilterDlg.h"
#include "grid/ui/CUGCtrl.h"
#include "report/ReportTables.h"
#include "support/LongList.h"
#include "support/SampleRepository.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/CTabFreqDist.h"
#include "tabs/ui/SearchLine.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace tavix {
namespace {

constexpr int kFilter = 32832;
constexpr int kStopFiltering = 32834;

/// A field view on the screen.
class Filtering : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob));
        select("name");
        m_view = std::make_unique<CFieldView>(m_site, false);
        m_view->TakeUp();
        m_site.listeners.push_back(m_view.get());
        m_view->resize(900, 500);
        m_view->show();
        QApplication::setActiveWindow(m_view.get());
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_view.get()));
        m_view->SelectTab(CFieldView::Frequency);
    }
    void select(const std::string& field) {
        m_site.selection = {};
        m_site.selection.kind = ReportSelection::Kind::Table;
        m_site.selection.table.id = m_sample.tables.at("customers");
        m_site.selection.fieldId = m_sample.fields.at("customers/" + field);
        if (m_view)
            m_view->ShowSelection();
    }
    CTabFreqDist& tab() { return dynamic_cast<CTabFreqDist&>(m_view->GetTab(m_view->GetCurrentTab())); }
    CUGCtrl& grid() { return *tab().findChild<CUGCtrl*>(); }
    /// All cells, each followed by "|".
    std::string rows(CUGCtrl& grid) {
        std::string text;
        for (int row = 0; row < grid.model()->rowCount(); ++row) {
            for (int column = 0; column < grid.model()->columnCount(); ++column)
                if (!grid.isColumnHidden(column))
                    text += toUtf8(grid.model()->index(row, column).data().toString()) + '|';
            text += '\n';
        }
        return text;
    }
    std::string rows() { return rows(grid()); }
    std::string caption(int index) {
        return toUtf8(m_view->findChild<QTabBar*>(QStringLiteral("tabStrip"))->tabText(index));
    }
    /// The summary of the filter; "" while there is none.
    std::string line(CTabFreqDist& tab) {
        auto* line = tab.findChild<SearchLine*>();
        return line->isVisible() ? toUtf8(line->findChild<QLabel*>(QStringLiteral("filterText"))->accessibleName())
                                 : "";
    }
    std::string line() { return line(tab()); }
    /// Which of the two commands are enabled.
    std::string commands() {
        const CommandState filter = m_view->UpdateCommand(kFilter);
        const CommandState stop = m_view->UpdateCommand(kStopFiltering);
        EXPECT_TRUE(filter.handled && stop.handled);
        return std::string(filter.enabled ? "filter " : "") + (stop.enabled ? "stop" : "");
    }
    QAction& action(const char* name) { return *tab().findChild<QAction*>(QLatin1String(name)); }
    void choose(const std::vector<int>& chosen, const char* name) {
        grid().clearSelection();
        for (const int row : chosen)
            grid().selectionModel()->select(grid().model()->index(row, 0),
                                            QItemSelectionModel::Select | QItemSelectionModel::Rows);
        ASSERT_TRUE(action(name).isEnabled());
        action(name).trigger();
    }
    void set(const std::string& filter) {
        m_site.document.GetFieldFilters().Set(m_site.selection.fieldId, DistributionKind::Frequency, filter);
    }
    void shoot(const char* name) {
        const QString folder = qEnvironmentVariable("TAVIX_SHOTS");
        QCoreApplication::processEvents();
        if (!folder.isEmpty())
            m_view->grab().save(QStringLiteral("%1/%2.png").arg(folder, QLatin1String(name)));
    }

    testing::TempFolder m_folder;
    testing::SampleRepository m_sample = testing::SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<SettingsStore> m_settings = makeMemorySettings();
    testing::ScriptedMessages m_messages;
    testing::TestSite m_site{*m_settings, m_messages};
    std::unique_ptr<CFieldView> m_view;
};

TEST_F(Filtering, GoesByTheDialogAndTheListSaysSo) {
    EXPECT_EQ("filter ", commands());
    EXPECT_EQ("Frequency Distribution", caption(CFieldView::Frequency));
    const std::string all = rows();
    const auto withDialog = [](const std::function<void(QDialog&)>& act) {
        QTimer::singleShot(0, qApp, [act] {
            auto* dialog = qobject_cast<CFilterDlg*>(QApplication::activeModalWidget());
            ASSERT_NE(nullptr, dialog);
            act(*dialog);
        });
    };
    withDialog([](QDialog& dialog) {
        EXPECT_EQ("Frequency value", toUtf8(dialog.findChild<QComboBox*>(QStringLiteral("field"))->itemText(0)));
        dialog.findChild<QComboBox*>(QStringLiteral("field"))->setCurrentIndex(1);
        dialog.findChild<QComboBox*>(QStringLiteral("operation"))->setCurrentIndex(1);
        dialog.findChild<QLineEdit*>(QStringLiteral("value"))->setText(QStringLiteral("299"));
        QTest::mouseClick(dialog.findChild<QPushButton*>(QStringLiteral("addCondition")), Qt::LeftButton);
        dialog.accept();
    });
    EXPECT_TRUE(m_view->ExecuteCommand(kFilter));
    // Percentages are shares of the rows that pass.
    EXPECT_EQ("Ada|400|56.98|\nGrace|302|43.02|\n", rows());
    EXPECT_EQ("Frequency Distribution (Filtered)", caption(CFieldView::Frequency));
    EXPECT_EQ("Pattern Frequency Distribution", caption(CFieldView::Patterns));
    EXPECT_EQ("Only rows with: Count greater than 299", line());
    EXPECT_EQ("filter stop", commands());
    shoot("filtered");
    m_view->SelectTab(CFieldView::Patterns);
    EXPECT_EQ("filter ", commands());
    EXPECT_EQ("", line());
    m_view->SelectTab(CFieldView::Frequency);

    // The dialog opens with the filter, and Cancel changes nothing.
    withDialog([](QDialog& dialog) {
        EXPECT_EQ("Count greater than 299", toUtf8(dialog.findChild<QPlainTextEdit*>()->toPlainText()));
        dialog.reject();
    });
    EXPECT_TRUE(m_view->ExecuteCommand(kFilter));
    EXPECT_EQ("filter stop", commands());
    EXPECT_EQ(1U, FilterMemory(*m_settings).Recent(DistributionKind::Frequency).size());
    EXPECT_TRUE(m_view->ExecuteCommand(kStopFiltering));
    EXPECT_EQ(all, rows());
    EXPECT_EQ("", line());
    EXPECT_EQ("Frequency Distribution", caption(CFieldView::Frequency));
    EXPECT_EQ("filter ", commands());
}

TEST_F(Filtering, GoesByTheValuesThatAreSelected) {
    EXPECT_FALSE(action("filterToValue").isEnabled());
    ASSERT_EQ("Ada", toUtf8(grid().model()->index(0, 0).data().toString()));
    choose({0, 1}, "filterToValue");
    EXPECT_EQ("Ada|400|56.98|\nGrace|302|43.02|\n", rows());
    EXPECT_EQ("Only rows with: (Value equal to \"Ada\" OR Value equal to \"Grace\")", line());
    choose({0}, "excludeValue");
    EXPECT_EQ("Grace|302|100.00|\n", rows());
    auto* stop = tab().findChild<QPushButton*>(QStringLiteral("stopFilter"));
    stop->setFocus();
    QTest::keyClick(stop, Qt::Key_Space);
    EXPECT_EQ("", line());
    EXPECT_TRUE(grid().hasFocus());

    // Null is a value too.
    const std::string all = rows();
    int null = 0;
    while (toUtf8(grid().model()->index(null, 0).data().toString()) != "(null value)")
        ++null;
    choose({null}, "excludeValue");
    EXPECT_EQ("Only rows with: Value is not null", line());
    EXPECT_EQ(std::string::npos, rows().find("(null value)"));
    choose({0}, "filterToValue");
    EXPECT_EQ("Ada|400|100.00|\n", rows());
    // No row is left: a sentence says why, and the filter can still be stopped.
    choose({0}, "excludeValue");
    EXPECT_EQ("No value passes the filter.", toUtf8(tab().findChild<QLabel*>(QStringLiteral("note"))->text()));
    EXPECT_EQ(stop, tab().GetLastTabStop());
    QTest::mouseClick(stop, Qt::LeftButton);
    EXPECT_EQ(all, rows());

    // A filter that was written as an expression cannot be extended.
    set("`Count` > 0");
    tab().SubjectChanged();
    m_messages.expectWarn("The filter was written as an expression, so values cannot be added to it. Edit the "
                          "expression, or stop filtering first.");
    choose({0}, "filterToValue");
    EXPECT_EQ("Only rows with: `Count` > 0", line());
}

TEST_F(Filtering, TakesNoPartInWhatIsNoValue) {
    ASSERT_TRUE(m_settings->write("TAVIX", "MaxFreqVals", "2"));
    select("city");
    ASSERT_EQ("Other", toUtf8(grid().model()->index(2, 0).data().toString()));
    grid().SelectRow(2);
    EXPECT_FALSE(action("filterToValue").isEnabled());
    grid().SelectRow(1);
    EXPECT_TRUE(action("filterToValue").isEnabled());
    EXPECT_EQ("Filter to This Value", toUtf8(action("filterToValue").text().remove(u'&')));
    grid().selectAll();
    EXPECT_FALSE(action("excludeValue").isEnabled());
    m_view->SelectTab(CFieldView::Patterns);
    grid().SelectRow(0);
    EXPECT_EQ("Exclude This Pattern", toUtf8(action("excludeValue").text().remove(u'&')));
    action("filterToValue").trigger();
    EXPECT_EQ(1, grid().model()->rowCount());
    EXPECT_EQ("Pattern Frequency Distribution (Filtered)", caption(CFieldView::Patterns));
    EXPECT_EQ("Frequency Distribution", caption(CFieldView::Frequency));
    // Nothing can be filtered without the distribution or without the field.
    select("remark");
    EXPECT_FALSE(action("filterToValue").isEnabled());
    m_site.document.Clear();
    m_site.Broadcast(RefreshHint::DocumentReset);
    EXPECT_EQ("", commands());
}

TEST_F(Filtering, StaysWithItsFieldOverRunsAndEndsWithTheReport) {
    choose({1}, "filterToValue");
    EXPECT_EQ("Grace|302|100.00|\n", rows());
    select("city");
    EXPECT_EQ("Frequency Distribution", caption(CFieldView::Frequency));
    EXPECT_EQ("", line());
    select("name");
    EXPECT_EQ("Frequency Distribution (Filtered)", caption(CFieldView::Frequency));
    EXPECT_EQ("Grace|302|100.00|\n", rows());
    ASSERT_TRUE(m_site.document.SetCurrentJob(m_sample.salesRuns[0]));
    EXPECT_EQ("Grace|300|100.00|\n", rows());
    EXPECT_EQ("Frequency Distribution (Filtered)", caption(CFieldView::Frequency));
    EXPECT_EQ("Only rows with: Value equal to \"Grace\"", line());
    ASSERT_TRUE(m_site.document.OpenReport(m_sample.path, m_sample.salesJob));
    m_site.Broadcast(RefreshHint::RunLoaded);
    EXPECT_EQ("Frequency Distribution", caption(CFieldView::Frequency));
    EXPECT_EQ("", line());
}

TEST_F(Filtering, ThatIsStoppedLeavesWhatIsShown) {
    const auto list = testing::LongList::build(m_folder.file("long.tavix"));
    ASSERT_TRUE(m_site.document.OpenReport(list.path, list.job));
    m_site.selection.table.id = list.table;
    m_site.selection.fieldId = list.field;
    m_site.Broadcast(RefreshHint::RunLoaded);
    m_view->ShowSelection();
    set("`Count` > 9998");
    tab().SubjectChanged();
    EXPECT_EQ("1|10000|50.00|\n2|9999|50.00|\n", rows());

    m_site.patienceMilliseconds = 0;
    int dialogs = 0;
    const auto escape = [this, &dialogs] {
        QTimer::singleShot(0, &tab(), [this, &dialogs] {
            QWidget* dialog = QApplication::activeModalWidget();
            ASSERT_NE(nullptr, dialog);
            EXPECT_EQ("4,096 of 10,000 rows", toUtf8(dialog->findChild<QLabel*>(QStringLiteral("rows"))->text()));
            ++dialogs;
            QTest::keyClick(dialog, Qt::Key_Escape);
        });
    };
    const std::string shown = rows();
    set("instr(`Value`, 'x') == 0");
    escape();
    tab().SubjectChanged();
    EXPECT_EQ(1, dialogs);
    EXPECT_EQ(nullptr, QApplication::activeModalWidget());
    EXPECT_EQ(shown, rows());
    EXPECT_EQ("Not filtered. The reading was stopped; the previous rows are shown.", line());
    EXPECT_EQ("filter stop", commands());
    shoot("filter-stopped");
    // The next reading clears the message.
    set("`Count` > 9999");
    tab().SubjectChanged();
    EXPECT_EQ("1|10000|100.00|\n", rows());
    EXPECT_EQ("Only rows with: `Count` > 9999", line());

    // Without a filter, the rows that passed one would be wrong.
    ASSERT_TRUE(m_settings->write("TAVIX", "MaxFreqVals", "9000"));
    escape();
    EXPECT_TRUE(m_view->ExecuteCommand(kStopFiltering));
    EXPECT_EQ(2, dialogs);
    EXPECT_EQ("", rows());
    EXPECT_EQ("The reading was stopped before its end.",
              toUtf8(tab().findChild<QLabel*>(QStringLiteral("note"))->text()));
    EXPECT_EQ("filter ", commands());
}

TEST_F(Filtering, IsTheSameInEveryWindowOfTheField) {
    CFieldView torn(m_site, true);
    m_site.listeners.push_back(&torn);
    torn.resize(900, 500);
    torn.show();
    torn.Refresh(nullptr, RefreshHint::RunLoaded, 0);
    torn.SelectTab(CFieldView::Frequency);
    auto& other = dynamic_cast<CTabFreqDist&>(torn.GetTab(CFieldView::Frequency));
    const int busy = m_messages.busyCount();
    choose({0}, "filterToValue");
    EXPECT_EQ(busy + 2, m_messages.busyCount());
    EXPECT_EQ("Ada|400|100.00|\n", rows(*other.findChild<CUGCtrl*>()));
    EXPECT_EQ("Only rows with: Value equal to \"Ada\"", line(other));
    QTest::mouseClick(other.findChild<QPushButton*>(QStringLiteral("stopFilter")), Qt::LeftButton);
    EXPECT_EQ("", line());
    EXPECT_EQ(rows(*other.findChild<CUGCtrl*>()), rows());
    EXPECT_EQ("Frequency Distribution", caption(CFieldView::Frequency));
    m_site.listeners.pop_back();
}

TEST_F(Filtering, ThatFailsLeavesWhatIsShownAndCanBeCorrected) {
    const std::string shown = rows();
    set("`Count` > ");
    PrViewer& viewer = *m_site.document.GetViewer();
    EXPECT_FALSE(viewer.getFreqDist(m_site.selection.fieldId, "`Count` > "));
    const std::string reason = viewer.getErrorString().str();
    const std::string message = "Error occurred while retrieving frequency distribution:\n\n" + reason;
    m_messages.expectWarn(message);
    tab().SubjectChanged();
    QApplication::processEvents();
    EXPECT_EQ(0U, m_messages.pending());
    EXPECT_EQ(shown, rows());
    EXPECT_EQ("Not filtered. " + reason, line());
    EXPECT_EQ("filter stop", commands());
    shoot("filter-fails");
    // Also when no rows could be shown before.
    select("city");
    m_messages.expectWarn(message);
    select("name");
    QApplication::processEvents();
    EXPECT_EQ("filter stop", commands());
    EXPECT_TRUE(m_view->ExecuteCommand(kStopFiltering));
    EXPECT_EQ(shown, rows());

    // The line warns of rows that could not be evaluated.
    set("`Count` * 9223372036854775807 > 0");
    tab().SubjectChanged();
    EXPECT_NE(std::string::npos, line().find("`Count` * 9223372036854775807 > 0")) << line();
    EXPECT_FALSE(line().starts_with("Only rows with")) << line();
}

TEST_F(Filtering, GoesByTheSearchField) {
    auto& search = *tab().findChild<QLineEdit*>(QStringLiteral("search"));
    const auto base = [this] { return toUtf8(tab().findChild<QLabel*>(QStringLiteral("base"))->text()); };
    const std::string all = rows();
    EXPECT_EQ("Shares of 1,000 records", base());
    EXPECT_TRUE(m_view->ExecuteCommand(static_cast<int>(CommandId::QuickSearch)));
    ASSERT_TRUE(search.hasFocus());
    // A pause searches, and the keyboard stays in the field.
    QTest::keyClicks(&search, QStringLiteral("ra"));
    EXPECT_EQ(all, rows());
    QTRY_COMPARE(grid().model()->rowCount(), 1);
    EXPECT_EQ("Grace|302|100.00|\n", rows());
    EXPECT_EQ("Only rows with: Value contains \"ra\" (case insensitive)", line());
    EXPECT_EQ("302 of 1,000 records pass", base());
    EXPECT_EQ("Frequency Distribution (Filtered)", caption(CFieldView::Frequency));
    EXPECT_TRUE(search.hasFocus());
    EXPECT_TRUE(FilterMemory(*m_settings).Recent(DistributionKind::Frequency).empty());
    shoot("searched");
    // Return searches at once and remembers the filter.
    search.setText(QStringLiteral("=Ada"));
    QTest::keyClick(&search, Qt::Key_Return);
    EXPECT_EQ("Ada|400|100.00|\n", rows());
    EXPECT_EQ(1U, FilterMemory(*m_settings).Recent(DistributionKind::Frequency).size());
    QTest::keyClick(&search, Qt::Key_Down);
    EXPECT_TRUE(grid().hasFocus());
    EXPECT_EQ(0, grid().GetCurrentRow());
    // A text that is not understood is said beside the field and changes nothing.
    m_view->ExecuteCommand(static_cast<int>(CommandId::QuickSearch));
    search.setText(QStringLiteral("~[a"));
    QTest::keyClick(&search, Qt::Key_Return);
    EXPECT_EQ("Ada|400|100.00|\n", rows());
    EXPECT_NE(std::string::npos, line().find("missing")) << line();
    EXPECT_EQ("~[a", toUtf8(search.text()));
    shoot("search-fails");
    QTest::keyClick(&search, Qt::Key_Escape);
    EXPECT_EQ(all, rows());
    EXPECT_EQ("", line());
    EXPECT_TRUE(search.hasFocus());

    // What the dialog or the menu has set is shown, if it can be typed.
    choose({1}, "filterToValue");
    EXPECT_EQ("=Grace", toUtf8(search.text()));
    set("`Count` > 300");
    tab().SubjectChanged();
    EXPECT_EQ("", toUtf8(search.text()));
    EXPECT_EQ("(edited in the dialog)", toUtf8(search.placeholderText()));
    m_view->SelectTab(CFieldView::Patterns);
    EXPECT_EQ("Shares of 772 non-null values", base());
    select("remark");
    EXPECT_FALSE(tab().findChild<SearchLine*>()->isVisible()) << "(Not calculated)";
    EXPECT_EQ("", toUtf8(tab().findChild<QLineEdit*>(QStringLiteral("search"))->text()));
}

TEST_F(Filtering, MoreOfTheListIsShownByLinks) {
    select("city");
    const auto& line = *tab().findChild<QWidget*>(QStringLiteral("extentLine"));
    const auto extent = [this] { return toUtf8(tab().findChild<QLabel*>(QStringLiteral("extent"))->text()); };
    auto& all = *tab().findChild<QPushButton*>(QStringLiteral("extentStep0"));
    EXPECT_EQ("showing 100 of 151 values", extent());
    EXPECT_EQ("all", toUtf8(all.text()));
    EXPECT_EQ(&all, tab().GetLastTabStop());
    shoot("extent");
    grid().setFocus();
    QTest::keyClick(&grid(), Qt::Key_Tab);
    ASSERT_TRUE(all.hasFocus());
    QTest::keyClick(&all, Qt::Key_Space);
    EXPECT_EQ(151, grid().model()->rowCount());
    EXPECT_EQ("showing all 151 values", extent());
    EXPECT_EQ("show 100", toUtf8(all.text()));
    QTest::mouseClick(&all, Qt::LeftButton);
    EXPECT_EQ(101, grid().model()->rowCount());
    select("name");
    EXPECT_FALSE(line.isVisible());
}

TEST_F(Filtering, TheHeaderListsTheDamagedRows) {
    auto& link = *m_view->findChild<QPushButton*>(QStringLiteral("damagedRows"));
    EXPECT_FALSE(link.isVisible());
    const auto airports = findTable(*m_site.document.GetViewer(), m_sample.tables.at("airports"), "/data/files");
    ASSERT_TRUE(airports);
    m_site.selection.table = *airports;
    m_site.selection.fieldId = m_sample.fields.at("airports/code");
    m_view->ShowSelection();
    EXPECT_EQ("2 damaged rows", toUtf8(link.text()));
    std::string seen;
    QTimer::singleShot(0, qApp, [&seen, this] {
        QWidget* dialog = QApplication::activeModalWidget();
        ASSERT_NE(nullptr, dialog);
        seen = toUtf8(dialog->findChild<QLabel*>(QStringLiteral("heading"))->text()) + "\n" +
               rows(*dialog->findChild<CUGCtrl*>());
        dialog->close();
    });
    QTest::mouseClick(&link, Qt::LeftButton);
    EXPECT_EQ("2 damaged rows of airports, as the run read it.\n"
              "The file is not at its place any more: /data/files/airports.csv\n"
              "3|1 cell instead of 2.|\n5|a bad byte was replaced.|\n",
              seen);
}

// A list that says "(Not calculated)" cannot be filtered.
TEST_F(Filtering, IsOfferedWhereThereIsAListAlone) {
    m_view->SelectTab(CFieldView::Patterns);
    EXPECT_EQ("filter ", commands());
    select("remark");
    EXPECT_EQ("(Not calculated)||||\n", rows());
    EXPECT_EQ("", commands());
    EXPECT_FALSE(action("filter").isEnabled());
    select("city");
    EXPECT_EQ("filter ", commands());
    EXPECT_TRUE(action("filter").isEnabled());
}

} // namespace
} // namespace tavix
