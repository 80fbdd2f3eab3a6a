#include "access/Layouts.h"
#include "access/tests/PrViewerFixture.h"
#include "base/GenException.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "sql/Connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace tavix {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using namespace repository;

/// A job of its own in the sample repository, with two runs; a second job has the same table.
class PrViewerRulesTest : public testing::PrViewerTest {
  protected:
    void SetUp() override {
        m_runWithoutRules = write("Shop", 0);
        write("Shop", 1);
        write("Other shop", 5);
        m_lastRun = write("Shop", 2);
        ASSERT_TRUE(m_viewer->init("sqlite:" + m_sample.path)) << error();
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_job)) << error();
    }

    /// A run; without metrics and rules for the factor 0.
    int write(const char* job, int factor) {
        auto writer = RunWriter::begin(m_sample.path, {job, "", "", testing::SampleRepository::runTime(factor)});
        EXPECT_TRUE(writer) << writer.error().text;
        for (const char* name : {"orders", "returns"}) {
            TableFacts table;
            table.name = name;
            const int id = *(*writer)->addTable(table);
            for (const char* field : {"id", "x", "y"}) {
                FieldFacts facts;
                facts.name = field;
                facts.ordinal = ++m_ordinal;
                EXPECT_TRUE((*writer)->addField(id, facts));
            }
            m_tables[name] = id;
        }
        const CustomMetricFacts sum{"Sum",        "total", false, "sum", "`y`*`x`", {{"x", {}}, {"y", {}}},
                                    0.1 * factor, 9,       1};
        const CustomMetricFacts ratio{
            "Ratio", "Ratio", true, "metric", "1", {{"y", MetricId::Mean}, {"y", MetricId::Mode}}, {}, 0, 0};
        BusinessRuleFacts rule{"Positive", "`x` > 0", {"x"}, 10, factor, 0, {"id", "x"}, 1, {}};
        for (int row = 0; row < 3; ++row)
            rule.log.push_back({100 + row, {std::to_string(row), row == 1 ? KvbString() : KvbString("x")}});
        if (factor > 0) {
            EXPECT_TRUE((*writer)->addCustomMetric(m_tables["orders"], sum));
            EXPECT_TRUE((*writer)->addCustomMetric(m_tables["orders"], ratio));
            EXPECT_TRUE((*writer)->addBusinessRule(m_tables["orders"], rule));
            EXPECT_TRUE((*writer)->addBusinessRule(m_tables["returns"], rule));
        }
        if (job == std::string("Shop") && factor > 0) {
            const std::array alerts{
                AlertFacts{"orders", AlertSubject::StandardMetric, "x", MetricId::NullCount, "", {}, ""},
                AlertFacts{"orders", AlertSubject::CustomMetric, "", MetricId::Count, "Ratio", {}, ""},
                AlertFacts{"orders", AlertSubject::BusinessRule, "", MetricId::Count, "Positive", {}, ""}};
            EXPECT_TRUE((*writer)->setAlerts(alerts));
        }
        EXPECT_TRUE((*writer)->commit({}));
        if (job == std::string("Shop"))
            m_job = (*writer)->jobId();
        return (*writer)->runId();
    }

    void damage(const char* sql) {
        auto connection = openRepository(m_sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(connection && (*connection)->execute(sql));
    }

    int m_job = -1;
    int m_lastRun = -1;
    int m_runWithoutRules = -1;
    int m_ordinal = 0;
    std::map<std::string, int> m_tables;
};

TEST_F(PrViewerRulesTest, MetricsAndRulesOfATableOrOfAll) {
    const std::string orders = std::to_string(m_tables["orders"]);
    const std::string returns = std::to_string(m_tables["returns"]);
    EXPECT_THAT(read(m_viewer->getCustomMetrics(m_tables["orders"])),
                ElementsAre("1|Sum|M1|sum|total|0.2|`y`*`x`|x,y|9|1|" + orders + "|rows",
                            "2|Ratio|M2|metric|Ratio|<null>|1|y|<null>|0|" + orders + "|metrics"));
    EXPECT_THAT(read(m_viewer->getCustomMetrics(m_tables["returns"])), IsEmpty());
    EXPECT_EQ(read(m_viewer->getCustomMetrics(-1)).size(), 2U);
    EXPECT_THAT(read(m_viewer->getBusinessRules(-1)), ElementsAre("1|B1|Positive|`x` > 0|2|10|x|0|3|" + orders,
                                                                  "2|B2|Positive|`x` > 0|2|10|x|0|3|" + returns));
    EXPECT_EQ(read(m_viewer->getBusinessRules(m_tables["returns"])).size(), 1U);
    expectFailure(!m_viewer->getBusinessRules(9999), "There is no table with the number 9999 in this run.");

    const auto inputs = read(m_viewer->getCustomMetricInputFields("M2"));
    ASSERT_EQ(inputs.size(), 2U);
    EXPECT_THAT(inputs[0], ::testing::EndsWith("|y|10"));
    EXPECT_THAT(inputs[1], ::testing::EndsWith("|y|12"));
    for (const char* key : {"", "M", "B1", "M01", "M1 ", "M99", "M99999999999999999999"})
        expectFailure(!m_viewer->getCustomMetricInputFields(key),
                      "There is no custom metric with the key \"" + std::string(key) + "\".");
    ASSERT_TRUE(m_viewer->setCurrentJob(m_runWithoutRules)) << error();
    EXPECT_THAT(read(m_viewer->getCustomMetricInputFields("M2")), IsEmpty()) << "this run does not have it";
}

TEST_F(PrViewerRulesTest, HistoriesAreThoseOfTheReport) {
    auto metric = m_viewer->getCustomMetricHistory("M1");
    ASSERT_TRUE(metric && metric->next());
    EXPECT_EQ(metric->getColumnDouble(layout::MetricHistoryOutputValue), 0.1);
    ASSERT_TRUE(metric->next());
    EXPECT_EQ(metric->getColumnInt(layout::HistoryRunId), m_lastRun);
    EXPECT_EQ(metric->getColumnDouble(layout::MetricHistoryOutputValue), 0.2);
    EXPECT_FALSE(metric->next());
    auto rule = m_viewer->getBusinessRuleHistory("B2");
    ASSERT_TRUE(rule && rule->next() && rule->next());
    EXPECT_EQ(rule->getColumnInt(layout::RuleHistoryFailedRows), 2);
    EXPECT_EQ(rule->getColumnInt(layout::RuleHistoryCheckedRows), 10);
    EXPECT_FALSE(rule->next());
    expectFailure(!m_viewer->getCustomMetricHistory("M99"), "There is no custom metric with the key \"M99\".");
    expectFailure(!m_viewer->getBusinessRuleHistory("M1"), "There is no business rule with the key \"M1\".");
}

TEST_F(PrViewerRulesTest, AlertsNameWhatTheyWatchAndLeadThere) {
    const std::string orders = std::to_string(m_tables["orders"]);
    const std::string job = std::to_string(m_job);
    auto alerts = read(m_viewer->getAlerts());
    ASSERT_GE(alerts.size(), 3U);
    alerts.erase(alerts.begin(), alerts.end() - 3);
    const int x = ids(m_viewer->getFieldList(m_tables["orders"])).at(1);
    EXPECT_THAT(alerts[0], ::testing::HasSubstr("|orders|x||"));
    EXPECT_THAT(alerts[0],
                ::testing::EndsWith("|SM||" + orders + "|" + std::to_string(x) + "|<null>|" + job + "|0||<null>"));
    EXPECT_THAT(alerts[1], ::testing::HasSubstr("|orders|Ratio||"));
    EXPECT_THAT(alerts[1], ::testing::EndsWith("|CM|M2|" + orders + "|<null>|2|" + job + "|0||<null>"));
    EXPECT_THAT(alerts[2], ::testing::HasSubstr("|orders|Positive||"));
    EXPECT_THAT(alerts[2], ::testing::EndsWith("|BR|B1|" + orders + "|<null>|1|" + job + "|0||<null>"));
}

TEST_F(PrViewerRulesTest, TheRowLogHasTheKeyAndOnDemandTheInputs) {
    EXPECT_THAT(read(m_viewer->getBusinessRuleRowLog(1, 0, true)),
                ElementsAre("100|1|0|0|x", "101|1|1|1|<null>", "102|1|2|2|x"));
    EXPECT_THAT(read(m_viewer->getBusinessRuleRowLog(1, 2, false)), ElementsAre("102|1|2|2"));
    auto cursor = m_viewer->getBusinessRuleRowLog(1, 1, true);
    ASSERT_TRUE(cursor);
    EXPECT_EQ(cursor->getColumnCount(), layout::RuleRowFirstField + 2);
    EXPECT_EQ(cursor->getColumnName(layout::RuleRowNumber), KvbString("Row"));
    EXPECT_EQ(cursor->getColumnName(layout::RuleRowFirstField + 1), KvbString("x"));
    EXPECT_TRUE(cursor->isColumnNull(layout::RuleRowFirstField)) << "before the first row";
    ASSERT_TRUE(cursor->next());
    EXPECT_EQ(cursor->getColumnInt(layout::RuleRowFirstField), 1);
    EXPECT_TRUE(cursor->isColumnNull(4) && cursor->isColumnNull(5) && cursor->isColumnNull(-1));
    expectFailure(!m_viewer->getBusinessRuleRowLog(77, 0, true), "This run has no rule with that number.");

    cursor.reset(); // an open cursor would keep the session at its state
    damage("UPDATE rule_row SET row_values = 'garbage' WHERE position = 1");
    auto damaged = m_viewer->getBusinessRuleRowLog(1, 0, true);
    ASSERT_TRUE(damaged && damaged->next());
    EXPECT_THROW(damaged->next(), GenException);
    damaged.reset();
    damage("UPDATE run_rule SET log_columns = '[1'");
    expectFailure(!m_viewer->getBusinessRuleRowLog(1, 0, true), "The row log is damaged.");
}

TEST(PrViewerOldRepository, HasNoRulesAndIsReadAsItIs) {
    testing::TempFolder folder;
    const std::string path = folder.file("old.tavix");
    {
        auto connection = sql::Connection::openFile(path, sql::OpenMode::Create);
        ASSERT_TRUE(connection && prepareSchema(**connection, sql::OpenMode::Create, schemaSteps().first(1)));
        ASSERT_TRUE((*connection)
                        ->execute("INSERT INTO job(id, name, created) VALUES(1, 'Job', 0);"
                                  "INSERT INTO run(id, job, started, finished) VALUES(1, 1, 0, 0);"));
    }
    auto viewer = PrViewer::create();
    ASSERT_TRUE(viewer->init(path) && viewer->setCurrentJobSetup(1)) << viewer->getErrorString().str();
    for (const auto& cursor : {viewer->getCustomMetrics(-1).release(), viewer->getBusinessRules(-1).release(),
                               viewer->getAlerts().release()}) {
        const ProfileCursorHandle handle(cursor);
        ASSERT_TRUE(handle) << viewer->getErrorString().str();
        EXPECT_FALSE(handle->next());
    }
    EXPECT_FALSE(viewer->getBusinessRuleRowLog(1, 0, true));
    EXPECT_FALSE(viewer->getCustomMetricHistory("M1"));
    EXPECT_FALSE(viewer->getBusinessRuleHistory("B1"));
    EXPECT_FALSE(viewer->getCustomMetricInputFields("M1"));
    auto connection = sql::Connection::openFile(path, sql::OpenMode::Read);
    EXPECT_EQ(*(*connection)->schemaVersion(), 1);
}

} // namespace
} // namespace tavix
