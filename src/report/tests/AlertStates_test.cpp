#include "report/AlertStates.h"
#include "report/ReportTables.h"
#include "support/RunScript.h"
#include "support/SampleFits.h"
#include "support/SampleRules.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace tavix {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;

class AlertStatesOfSample : public testing::SampleViewer {
  protected:
    /// An alert on a metric of customers.`field`, with the properties of a job's alert: "COMPARE=0 VALUE1=228".
    void alert(const std::string& field, MetricId metric, const std::string& properties) {
        add(fmt::format("{}, {}, 'SM', ''", m_sample.fields.at("customers/" + field), static_cast<int>(metric)),
            fmt::format("METRIC={} {}", static_cast<int>(metric), properties));
    }
    void alertOnRule(const std::string& key, const std::string& properties) {
        add(fmt::format("NULL, NULL, 'BR', '{}'", key), properties);
    }
    std::vector<std::string> statesOf(int run) {
        EXPECT_TRUE(m_viewer->setCurrentJob(run));
        std::vector<std::string> lines;
        for (const AlertState& state : readAlertStates(*m_viewer, m_sample.salesJob))
            lines.push_back(line(state));
        return lines;
    }
    /// A copy of the latest run, with another mean of customers.balance.
    int addRun(const std::string& mean) {
        testing::runScript(m_sample.path,
                           fmt::format(R"(
            CREATE TEMP TABLE latest AS SELECT MAX(id) AS id FROM run WHERE job = {};
            INSERT INTO run(job, started, finished) SELECT job, started + 1, finished + 1 FROM run
                WHERE id = (SELECT id FROM latest);
            CREATE TEMP TABLE fields AS SELECT * FROM run_field WHERE run = (SELECT id FROM latest);
            UPDATE fields SET run = (SELECT MAX(id) FROM run);
            UPDATE fields SET mean = {} WHERE field = {};
            INSERT INTO run_field SELECT * FROM fields;)",
                                       m_sample.salesJob, mean, m_sample.fields.at("customers/balance")));
        return readRuns(*m_viewer).front().id;
    }

  private:
    static std::string number(const std::optional<double>& value) { return value ? fmt::format("{}", *value) : "-"; }
    static std::string line(const AlertState& state) {
        const char* const word = state.isRaised()                                    ? "raised"
                                 : state.verdict.state == AlertVerdict::State::Quiet ? "quiet"
                                                                                     : "unknown";
        return fmt::format("{}: {} {}, {} before", state.condition(), word, number(state.figure),
                           number(state.verdict.reference));
    }
    void add(const std::string& values, const std::string& properties) {
        std::string script =
            fmt::format("INSERT INTO alert(table_id, field, metric, type_code, watched_key) VALUES({}, {});",
                        m_sample.tables.at("customers"), values);
        std::istringstream words(properties + fmt::format(" JOB={}", m_sample.salesJob));
        int position = 0;
        for (std::string word; words >> word;) {
            const std::size_t sign = word.find('=');
            script += fmt::format("INSERT INTO alert_property VALUES((SELECT MAX(id) FROM alert), {}, '{}', '{}');",
                                  position++, word.substr(0, sign), word.substr(sign + 1));
        }
        testing::runScript(m_sample.path, script);
    }
};

TEST_F(AlertStatesOfSample, AFigureOverWhatFitsIsMarkedAfterTheCondition) {
    testing::makeFits(m_sample, 999, "real", 1);
    alert("balance", MetricId::Mean, "COMPARE=0 VALUE1=5");
    alert("balance", MetricId::NullCount, "COMPARE=0 VALUE1=5");
    EXPECT_THAT(statesOf(m_sample.salesRuns[1]),
                ElementsAre("Mean for field balance is greater than 5 (fits): raised 12.3456789, - before",
                            "Null Count for field balance is greater than 5: quiet 0, - before"));
    EXPECT_THAT(statesOf(m_sample.salesRuns[0]),
                Contains("Mean for field balance is greater than 5: raised 12.3456789, - before"));
}

TEST_F(AlertStatesOfSample, EachRunIsCheckedByItsOwnFigure) {
    alert("name", MetricId::NullCount, "COMPARE=0 VALUE1=228 LEVEL=error");
    alert("remark", MetricId::Mean, "COMPARE=1 VALUE1=5");
    EXPECT_THAT(statesOf(m_sample.salesRuns[0]),
                ElementsAre("Null Count for field name is greater than 228: raised 230, - before",
                            "Mean for field remark is less than 5: unknown -, - before"));
    EXPECT_THAT(statesOf(m_sample.salesRuns[2]),
                ElementsAre("Null Count for field name is greater than 228: quiet 228, - before",
                            "Mean for field remark is less than 5: unknown -, - before"));
    const std::vector<AlertState> states = readAlertStates(*m_viewer, m_sample.salesJob);
    EXPECT_EQ("customers", states[0].table);
    EXPECT_EQ("name", states[0].input);
    EXPECT_EQ(AlertLevel::Error, states[0].rule->level);
    EXPECT_TRUE(readAlertStates(*m_viewer, m_sample.inventoryJob).empty());
}

TEST_F(AlertStatesOfSample, AChangeIsMeasuredAgainstTheRunsBefore) {
    alert("name", MetricId::NullCount, "COMPARE=5 VALUE1=1 RUNS=2");
    EXPECT_THAT(
        statesOf(m_sample.salesRuns[0]),
        ElementsAre(
            "Null Count for field name has changed by more than 1 against the mean of 2 runs: unknown 230, - before"));
    EXPECT_THAT(
        statesOf(m_sample.salesRuns[1]),
        ElementsAre(
            "Null Count for field name has changed by more than 1 against the mean of 2 runs: quiet 229, 230 before"));
    EXPECT_THAT(statesOf(m_sample.salesRuns[2]), ElementsAre("Null Count for field name has changed by more than 1 "
                                                             "against the mean of 2 runs: raised 228, 229.5 before"));
}

// Four runs without the figure lie between the two that have it.
TEST_F(AlertStatesOfSample, TheVerdictOnARunIsTheSameOnceThereAreLaterRuns) {
    alert("balance", MetricId::Mean, "COMPARE=5 VALUE1=1 RUNS=1");
    for (int i = 0; i < 4; ++i)
        addRun("NULL");
    const int run = addRun("50");
    const auto verdict = ElementsAre("Mean for field balance has changed by more than 1: raised 50, 12.3456789 before");
    EXPECT_THAT(statesOf(run), verdict);
    for (const char* mean : {"NULL", "51", "52"})
        addRun(mean);
    EXPECT_THAT(statesOf(run), verdict);
}

TEST_F(AlertStatesOfSample, ARuleIsCheckedByItsFailedRowsOrTheirPercentage) {
    testing::addRules(m_sample);
    alertOnRule(fmt::format("B{}", testing::ruleId("Name is known")), "COMPARE=0 VALUE1=11");
    alertOnRule(fmt::format("B{}", testing::ruleId("Name is known")), "COMPARE=5 VALUE1=1.1");
    EXPECT_THAT(statesOf(m_sample.salesRuns[2]),
                ElementsAre("Failed row count for business rule Name is known is greater than 11: raised 12, - before",
                            "Percentage of failed rows for business rule Name is known is greater than 1.1: "
                            "raised 1.2, - before"));
    EXPECT_THAT(statesOf(m_sample.salesRuns[1]),
                ElementsAre("Failed row count for business rule Name is known is greater than 11: quiet 11, - before",
                            "Percentage of failed rows for business rule Name is known is greater than 1.1: "
                            "quiet 1.1, - before"));
}

} // namespace
} // namespace tavix
