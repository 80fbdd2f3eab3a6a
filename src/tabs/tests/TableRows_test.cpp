#include "support/RowsText.h"
#include "support/RunScript.h"
#include "support/SampleRules.h"
#include "support/SampleViewer.h"
#include "tabs/ChartRows.h"
#include "tabs/RuleRows.h"

#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;

class TableRows : public testing::SampleViewer {
  protected:
    void SetUp() override {
        SampleViewer::SetUp();
        m_customers = m_sample.tables.at("customers");
    }

    int m_customers = -1;
};

TEST_F(TableRows, VisualizationsOfATable) {
    ChartRows rows;
    ASSERT_TRUE(rows.Fill(*m_viewer, m_customers));
    EXPECT_EQ("Name:180|Description:360", headingsOf(rows));
    EXPECT_THAT(linesOf(rows), ElementsAre("Nulls|Null counts of all fields"));
    EXPECT_EQ("", rows.GetEmptyText());
    ASSERT_TRUE(rows.Fill(*m_viewer, m_sample.tables.at("orders")));
    EXPECT_THAT(linesOf(rows), ElementsAre());
    EXPECT_EQ("No visualization of this table is stored.", rows.GetEmptyText());
}

TEST_F(TableRows, RulesAndMetricsShowWhatTheRunCounted) {
    testing::addRules(m_sample);
    testing::runScript(m_sample.path, "UPDATE run_rule SET checked_rows = 600, error_rows = 7 WHERE rule = 21;"
                                      "UPDATE run_custom_metric SET used_rows = 990, error_rows = 3 WHERE metric = 11");
    BusinessRuleRows rules;
    ASSERT_TRUE(rules.Fill(*m_viewer, m_customers)) << rules.GetErrorText();
    EXPECT_EQ("Business Rule:180|>Failed Rows:110|>Percentage:110|>Checked Rows:110|>Rows in Error:110|Condition:300|"
              "Input Fields:180",
              headingsOf(rules));
    EXPECT_THAT(linesOf(rules), ElementsAre("Name is known|>12|>2.00 %[0.02]|>600|>7|`balance` > 0|",
                                            "Balance is positive|>22|>2.20 %[0.02]|>1,000|>0|`balance` > 0|"));
    CustomMetricRows metrics;
    ASSERT_TRUE(metrics.Fill(*m_viewer, m_customers)) << metrics.GetErrorText();
    EXPECT_EQ("Custom Metric:180|Output Name:150|>Value:130|Figure:80|Expression:300|Input Fields:180|>Rows Used:110|"
              ">Rows in Error:110",
              headingsOf(metrics));
    EXPECT_THAT(linesOf(metrics),
                ElementsAre("Spread|out|>12|sum|`balance`||>990|>3", "Margin|out|>22|sum|`balance`||>1,000|>0"));
}

// Sorted as texts, "Sun Feb" would come before "Thu Jan".
TEST_F(TableRows, HistoriesAreSortedByTheDateOfTheRun) {
    testing::addRules(m_sample);
    CustomMetricHistoryRows metrics(std::locale::classic());
    BusinessRuleHistoryRows rules(std::locale::classic());
    ASSERT_TRUE(metrics.Fill(*m_viewer, "M" + std::to_string(testing::ruleId("Spread")))) << metrics.GetErrorText();
    ASSERT_TRUE(rules.Fill(*m_viewer, "B" + std::to_string(testing::ruleId("Name is known")))) << rules.GetErrorText();
    const auto columnOf = [](const ListRows& rows) {
        std::string text;
        for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
            text += rows.GetCell(2, row).text + " ";
        return text;
    };
    EXPECT_EQ("12 11 10 ", columnOf(metrics));
    ASSERT_TRUE(metrics.Sort(0, false));
    EXPECT_EQ("10 11 12 ", columnOf(metrics));
    ASSERT_TRUE(rules.Sort(0, false));
    EXPECT_EQ("10 11 12 ", columnOf(rules));
    ASSERT_TRUE(rules.Sort(0, true));
    EXPECT_EQ("12 11 10 ", columnOf(rules));
}

TEST_F(TableRows, AFailureLeavesTheRowsThatAreShown) {
    ChartRows charts;
    ASSERT_TRUE(charts.Fill(*m_viewer, m_customers));
    m_viewer->close();
    EXPECT_FALSE(charts.Fill(*m_viewer, m_customers));
    EXPECT_EQ(1, charts.GetRowCount());
    EXPECT_THAT(charts.GetErrorText(), StartsWith("Error occurred while retrieving visualizations:\n\n"));
}

TEST_F(TableRows, AMetricAndARuleAreMarkedWhereTheirAlertsLook) {
    testing::addRules(m_sample);
    const auto watching = [this](AlertSubject subject, const std::string& name, bool ofPercent, AlertLevel level) {
        AlertState alert;
        alert.tableId = m_customers;
        alert.subject = subject;
        alert.typeCode = alertTypeCode(subject);
        alert.key = (subject == AlertSubject::CustomMetric ? "M" : "B") + std::to_string(testing::ruleId(name));
        alert.rule = AlertRule{.ofFailedPercent = ofPercent, .level = level};
        alert.sentence = alert.description = name + " is too high";
        alert.verdict.state = AlertVerdict::State::Raised;
        return alert;
    };
    const std::vector<AlertState> alerts = {
        watching(AlertSubject::CustomMetric, "Margin", false, AlertLevel::Warning),
        watching(AlertSubject::BusinessRule, "Name is known", true, AlertLevel::Error),
        watching(AlertSubject::BusinessRule, "Balance is positive", false, AlertLevel::Warning)};
    TableIdentity table;
    table.id = m_customers;
    /// "row:column mark" of each marked cell.
    const auto marksOf = [](const ListRows& rows) {
        std::vector<std::string> marks;
        for (std::int64_t row = 0; row < rows.GetRowCount(); ++row)
            for (int column = 0; column < rows.GetColumnCount(); ++column)
                if (const AlertMark mark = rows.GetCell(column, row).alert; mark != AlertMark::None)
                    marks.push_back(std::to_string(row) + ":" + std::to_string(column) + " " +
                                    std::string(alertMarkText(mark)));
        return marks;
    };
    CustomMetricRows metrics;
    metrics.SetAlerts({alerts, table});
    ASSERT_TRUE(metrics.Fill(*m_viewer, m_customers)) << metrics.GetErrorText();
    EXPECT_THAT(marksOf(metrics), ElementsAre("1:2 alert raised, warning"));
    EXPECT_EQ("Alert raised, warning: Margin is too high", metrics.GetToolTip(2, 1));
    EXPECT_EQ("", metrics.GetToolTip(2, 0));
    EXPECT_EQ(1U, metrics.GetAlerts(1).size());
    BusinessRuleRows rules;
    rules.SetAlerts({alerts, table});
    ASSERT_TRUE(rules.Fill(*m_viewer, m_customers)) << rules.GetErrorText();
    EXPECT_THAT(marksOf(rules), ElementsAre("0:2 alert raised, error", "1:1 alert raised, warning"));
    EXPECT_EQ("Alert raised, error: Name is known is too high", rules.GetToolTip(2, 0));
    EXPECT_EQ("", rules.GetToolTip(1, 0)) << "the alert watches the percentage";
}

} // namespace
} // namespace tavix
