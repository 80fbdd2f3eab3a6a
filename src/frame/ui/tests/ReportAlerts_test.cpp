// The window of all alerts, as the command opens it, and where it leads.
#include "alert/ui/CTabRptAlrts.h"
#include "doc/Commands.h"
#include "frame/ui/tests/ViewOverSample.h"

#include <QComboBox>
#include <QPushButton>

#include <gmock/gmock.h>

namespace tavix {
namespace {

using Answer = Messages::Answer;

class ReportAlerts : public testing::ViewOverSample {
  protected:
    void addAlert(int job, const std::string& field, MetricId metric, const char* description) {
        ASSERT_TRUE(m_view->LoadReportForJob("", job, m_sample.path));
        AlertDefinition alert;
        alert.table = m_sample.tables.at(field.substr(0, field.find('/')));
        alert.field = m_sample.fields.at(field);
        alert.metric = metric;
        alert.rule.comparison = AlertComparison::Greater;
        alert.description = description;
        int id = -1;
        ASSERT_TRUE(m_view->GetTavixDoc().GetViewer()->createEditAlert(id, alert, "anna"));
    }
    /// Opens the window by its command, and goes to the alert with that description.
    void goTo(const char* description) {
        int acted = 0;
        inNextDialog(
            [description](QDialog& dialog) {
                QCoreApplication::processEvents();
                CUGCtrl& alerts = *dialog.findChild<CUGCtrl*>();
                for (int row = 0; row < alerts.model()->rowCount(); ++row) {
                    if (alerts.model()->index(row, 0).data().toString() == QLatin1String(description))
                        alerts.SelectRow(row);
                }
                QTest::keyClick(&alerts, Qt::Key_Return);
            },
            &acted);
        EXPECT_TRUE(execute(CommandId::Alerts));
        EXPECT_EQ(1, acted);
    }
    /// "table: tab, row" of what is shown.
    std::string shown() {
        return m_view->GetSelection().table.displayName() + ": " + std::to_string(m_view->GetItemCode()) + ", " +
               cell(tab(), static_cast<int>(grid(tab()).GetCurrentRow()), 0);
    }
};

TEST_F(ReportAlerts, AreAWindowOfEveryReport) {
    EXPECT_EQ((CommandState{true, false, false}), stateOf(CommandId::Alerts));
    const auto listed =
        std::find_if(kCommands.begin(), kCommands.end(), [](const auto& each) { return each.id == CommandId::Alerts; });
    ASSERT_NE(kCommands.end(), listed);
    EXPECT_EQ("Display active alerts\nAlerts", listed->text);
    EXPECT_EQ(32829, static_cast<int>(CommandId::Alerts));
    ASSERT_TRUE(load());
    EXPECT_EQ((CommandState{true, true, false}), stateOf(CommandId::Alerts));
}

TEST_F(ReportAlerts, LeadToTheFigureThatAnAlertWatches) {
    addAlert(m_sample.salesJob, "customers/name", MetricId::NullCount, "Nulls");
    ASSERT_TRUE(selectField("suppliers", "city"));
    goTo("Nulls");
    EXPECT_EQ("customers: 0, name", shown());
    EXPECT_TRUE(report().isAncestorOf(m_view->focusWidget()));

    // In the tab of the table, too.
    report().SelectTab(CTableView::Alerts);
    EXPECT_EQ("Nulls", cell(tab(), 0, 0));
    EXPECT_EQ("raised", cell(tab(), 0, 3));
    grid(tab()).SelectRow(0);
    QTest::keyClick(&grid(tab()), Qt::Key_Return);
    EXPECT_EQ("customers: 0, name", shown());
}

TEST_F(ReportAlerts, OfAnotherReportOpenItAfterAQuestion) {
    addAlert(m_sample.inventoryJob, "parts/Column 1", MetricId::Count, "Parts");
    ASSERT_TRUE(load());
    ASSERT_TRUE(selectTable("customers"));
    const std::string question =
        "This alert belongs to the report \u201CInventory\u201D.\nDo you want to open that report?";
    m_messages.expectAsk(question, "Alerts", Answer::No, Answer::Yes);
    goTo("Parts");
    EXPECT_EQ("Sales", m_view->GetTavixDoc().GetTitle());
    m_messages.expectAsk(question, "Alerts", Answer::Yes, Answer::Yes);
    goTo("Parts");
    EXPECT_EQ("Inventory", m_view->GetTavixDoc().GetTitle());
    EXPECT_EQ(m_sample.inventoryRun, m_view->GetTavixDoc().GetCurrentJob());
    EXPECT_EQ("parts: 0, Column 1", shown());
}

TEST_F(ReportAlerts, OnATableThatTheRunDoesNotHaveAreSaidSo) {
    addAlert(m_sample.salesJob, "late orders/days", MetricId::Count, "Late");
    ASSERT_TRUE(setRun(0));
    ASSERT_TRUE(selectTable("customers"));
    m_messages.expectWarn("The run that is shown does not have the table \u201Clate orders\u201D.", "Alerts");
    goTo("Late");
    EXPECT_EQ("customers", m_view->GetSelection().table.name);
}

TEST_F(ReportAlerts, KeepTheirFilterUntilTheViewIsClosed) {
    addAlert(m_sample.salesJob, "customers/name", MetricId::NullCount, "Nulls");
    const auto filterBy = [this](const char* table) {
        std::string line;
        inNextDialog([&](QDialog& dialog) {
            QCoreApplication::processEvents();
            inNextDialog([table](QDialog& filter) {
                auto& choice = *filter.findChild<QComboBox*>(QStringLiteral("table"));
                choice.setCurrentIndex(choice.findText(QLatin1String(table)));
                filter.accept();
            });
            line = toUtf8(dialog.findChild<QLabel*>(QStringLiteral("currentFilter"))->text());
            dialog.findChild<QPushButton*>(QStringLiteral("filter"))->click();
        });
        EXPECT_TRUE(execute(CommandId::Alerts));
        return line;
    };
    EXPECT_EQ("Current filter: None", filterBy("customers"));
    EXPECT_EQ("Current filter: Table = customers", filterBy("(All)"));
    EXPECT_EQ("Current filter: None", filterBy("(All)"));
}

} // namespace
} // namespace tavix
