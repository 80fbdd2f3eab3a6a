#include "base/GenException.h"
#include "report/RunOverview.h"
#include "support/RunScript.h"
#include "support/SampleRules.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::ElementsAre;

class RunOverviewOfSample : public testing::SampleViewer {
  protected:
    RunOverview read(int run) {
        EXPECT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns.at(static_cast<std::size_t>(run))));
        return readRunOverview(*m_viewer, m_sample.salesJob);
    }
    static std::vector<std::string> names(const std::vector<RunOverview::Field>& fields) {
        std::vector<std::string> all;
        for (const RunOverview::Field& field : fields)
            all.push_back(field.name);
        return all;
    }
};

TEST_F(RunOverviewOfSample, ARunIsReadWithTheOneBeforeIt) {
    const RunOverview latest = read(2);
    EXPECT_EQ("", latest.run.description);
    EXPECT_EQ(90, latest.seconds);
    ASSERT_TRUE(latest.before);
    EXPECT_EQ("February", latest.before->description);
    std::vector<std::string> lines;
    for (const RunOverview::Table& table : latest.tables)
        lines.push_back(fmt::format("{} {} records, {} damaged, {} fields", table.name, table.records, table.damaged,
                                    table.fields));
    EXPECT_THAT(lines,
                ElementsAre("customers 1000 records, 0 damaged, 7 fields", "suppliers 6 records, 0 damaged, 2 fields",
                            "orders 1000 records, 0 damaged, 2 fields", "big orders 50 records, 0 damaged, 1 fields",
                            "german customers 120 records, 0 damaged, 1 fields",
                            "late orders 9 records, 0 damaged, 1 fields", "airports 5 records, 2 damaged, 2 fields"));
    EXPECT_EQ(7U, latest.tablesBefore.size());
    ASSERT_EQ(2U, latest.sources.size());
    EXPECT_EQ("Warehouse", latest.sources.front().name);
    EXPECT_TRUE(latest.sources.back().isOfFiles);

    const RunOverview first = read(0);
    EXPECT_FALSE(first.before);
    EXPECT_THAT(first.tablesBefore, ElementsAre());
    EXPECT_THAT(first.newFields, ElementsAre());
}

TEST_F(RunOverviewOfSample, FieldsWithNullsComeByTheirShareAndNewOnesOnlyOfTablesOfBothRuns) {
    testing::runScript(m_sample.path, fmt::format("DELETE FROM run_field WHERE run = {} AND field = {};"
                                                  "DELETE FROM run_field WHERE run = {} AND field = {};",
                                                  m_sample.salesRuns[1], m_sample.fields.at("customers/city"),
                                                  m_sample.salesRuns[2], m_sample.fields.at("orders/note")));
    const RunOverview latest = read(2);
    EXPECT_THAT(names(latest.fieldsWithNulls), ElementsAre("remark", "latitude", "name", "code", "since", "city"));
    EXPECT_EQ(1000, latest.fieldsWithNulls.front().nulls);
    EXPECT_EQ(100, latest.fieldsWithNulls.front().nullPercent);
    EXPECT_THAT(names(latest.newFields), ElementsAre("city"));
    EXPECT_THAT(names(latest.vanishedFields), ElementsAre("note"));
    EXPECT_THAT(names(read(1).newFields), ElementsAre()) << "late orders is new itself";
}

TEST_F(RunOverviewOfSample, ViolatedRulesAndRaisedAlertsAreListedWithWhatTheyWatch) {
    testing::addRules(m_sample);
    const int customers = m_sample.tables.at("customers");
    const int remark = m_sample.fields.at("customers/remark");
    const int metric = static_cast<int>(MetricId::NullCount);
    std::string script;
    for (const auto& [id, limit, level] :
         {std::tuple(501, 1, "warning"), std::tuple(502, 5000, "error"), std::tuple(503, 999, "error")}) {
        script += fmt::format("INSERT INTO alert(id, table_id, field, metric, type_code, job, of_records, position, "
                              "origin, author) VALUES({}, {}, {}, {}, 'SM', {}, 0, {}, 'J', '');",
                              id, customers, remark, metric, m_sample.salesJob, id);
        int position = 0;
        for (const auto& [name, value] : {std::pair<std::string, std::string>{"JOB", std::to_string(m_sample.salesJob)},
                                          {"METRIC", std::to_string(metric)},
                                          {"COMPARE", "0"},
                                          {"VALUE1", std::to_string(limit)},
                                          {"LEVEL", level}})
            script +=
                fmt::format("INSERT INTO alert_property VALUES({}, {}, '{}', '{}');", id, position++, name, value);
    }
    testing::runScript(m_sample.path, script);
    const RunOverview latest = read(2);
    std::vector<std::string> rules;
    for (const RunOverview::Rule& rule : latest.violatedRules)
        rules.push_back(fmt::format("{}: {} of {}", rule.name, rule.failed, rule.checked));
    EXPECT_THAT(rules, ElementsAre("Balance is positive: 22 of 1000", "Name is known: 12 of 1000"));
    ASSERT_EQ(2U, latest.raisedAlerts.size());
    EXPECT_EQ(503, latest.raisedAlerts.front().id) << "errors first";
    EXPECT_EQ(customers, latest.raisedAlerts.front().tableId);
    EXPECT_EQ(remark, latest.raisedAlerts.front().fieldId);
    EXPECT_EQ(metric, latest.raisedAlerts.front().watchedId);
    ASSERT_EQ(1U, latest.otherAlerts.size());
    EXPECT_EQ(502, latest.otherAlerts.front().id);
    ASSERT_TRUE(m_viewer->muteAlert(503, "anna", "known gap", 0, {}));
    EXPECT_EQ(501, read(2).raisedAlerts.front().id) << "a muted alert is not listed as raised";
    EXPECT_EQ(503, read(2).otherAlerts.front().id);
}

TEST_F(RunOverviewOfSample, ARunOfAnotherReportIsRefused) {
    EXPECT_FALSE(m_viewer->getTablesOfRun(m_sample.inventoryRun));
    EXPECT_FALSE(m_viewer->getFieldsOfRun(-1));
    EXPECT_EQ("The report has no run with the number -1.", m_viewer->getErrorString().str());
    m_viewer->close();
    EXPECT_THROW((void)readRunOverview(*m_viewer, m_sample.salesJob), GenException);
}

} // namespace
} // namespace tavix
