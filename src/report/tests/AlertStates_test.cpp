#include "base/GenException.h"
#include "report/AlertStates.h"
#include "report/AlertTexts.h"
#include "report/ReportTables.h"
#include "report/tests/SlowJudge.h"
#include "support/RunScript.h"
#include "support/SampleFits.h"
#include "support/SampleRules.h"
#include "support/SampleViewer.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <random>

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

    void add(const std::string& values, const std::string& properties) {
        const bool isOfRecords = properties.find("RECORDS=1") != std::string::npos;
        std::string script = fmt::format(
            "INSERT INTO alert(table_id, field, metric, type_code, watched_key, job, of_records, position, origin, "
            "author) VALUES({}, {}, {}, {}, (SELECT COUNT(*) FROM alert), 'J', '');",
            m_sample.tables.at("customers"), values, m_sample.salesJob, isOfRecords ? 1 : 0);
        std::istringstream words(properties);
        int position = 0;
        for (std::string word; words >> word;) {
            const std::size_t sign = word.find('=');
            script += fmt::format("INSERT INTO alert_property VALUES((SELECT MAX(id) FROM alert), {}, '{}', '{}');",
                                  position++, word.substr(0, sign), word.substr(sign + 1));
        }
        testing::runScript(m_sample.path, script);
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

TEST_F(AlertStatesOfSample, AnAlertWithoutAKnownRuleSaysSoAndIsNotJudged) {
    alert("name", MetricId::NullCount, "COMPARE=7");
    add(fmt::format("{}, 2, 'SM', ''", m_sample.fields.at("customers/name")), "");
    add(fmt::format("{}, 2, 'SM', ''", m_sample.fields.at("customers/name")), "METRIC=99 COMPARE=0");
    const std::string line = "Unable to retrieve alert properties: unknown -, - before";
    EXPECT_THAT(statesOf(m_sample.salesRuns[2]), ElementsAre(line, line, line));
    EXPECT_EQ((AlertCounts{.unjudged = 3}), countAlerts(readAlertStates(*m_viewer, m_sample.salesJob)));
}

TEST_F(AlertStatesOfSample, TheAlertsOfAllJobsAreEachJudgedForARunOfTheirOwn) {
    alert("name", MetricId::NullCount, "COMPARE=0 VALUE1=228");
    int id = -1;
    AlertDefinition onParts;
    onParts.table = m_sample.tables.at("parts");
    onParts.metric = MetricId::Count;
    onParts.rule.value1 = 1;
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.inventoryJob));
    ASSERT_TRUE(m_viewer->createEditAlert(id, onParts, "anna")) << m_viewer->getErrorString().view();
    ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[1]));

    const std::vector<AlertState> states = readAllAlertStates(*m_viewer);
    std::vector<std::string> lines;
    lines.reserve(states.size());
    for (const AlertState& state : states)
        lines.push_back(fmt::format("{} run {}: {}, {}, {}", alertPath(state), state.run, state.sentence,
                                    alertShownWord(state.shown()), alertOriginText(state)));
    EXPECT_THAT(lines, ElementsAre(fmt::format("Warehouse.crm.public.customers run {}: Null Count for field name is "
                                               "greater than 228, raised, job",
                                               m_sample.salesRuns[1]),
                                   fmt::format("/data/files.parts run {}: Number of records is greater than 1, raised, "
                                               "anna",
                                               m_sample.inventoryRun)));
    EXPECT_EQ(id, states[1].id);
    EXPECT_TRUE(states[1].isOfRecords);
    EXPECT_EQ(onParts, states[1].definition());
    EXPECT_EQ(1U, readAlertStates(*m_viewer, m_sample.salesJob).size());

    // Without a report, every alert is judged for the latest run of its job.
    const PrViewer::Handle other = PrViewer::create();
    ASSERT_TRUE(other->init(m_sample.path));
    EXPECT_EQ(m_sample.salesRuns[2], readAllAlertStates(*other).front().run);
    other->close();
    std::vector<AlertState> none;
    EXPECT_THROW(readAllAlertStates(*other, none), GenException);
}

TEST_F(AlertStatesOfSample, AMuteHoldsFromItsRunToItsEndWhateverTheVerdictIs) {
    alert("name", MetricId::NullCount, "COMPARE=0 VALUE1=200");
    const int id = readAlertStates(*m_viewer, m_sample.salesJob).front().id;
    const auto words = [&] {
        std::vector<std::string> shown;
        for (const int run : m_sample.salesRuns) {
            EXPECT_TRUE(m_viewer->setCurrentJob(run));
            const AlertState state = readAlertStates(*m_viewer, m_sample.salesJob).front();
            EXPECT_EQ(AlertVerdict::State::Raised, state.verdict.state);
            EXPECT_EQ(state.mute.has_value(), !state.isRaised());
            shown.emplace_back(alertShownWord(state.shown()));
        }
        return shown;
    };
    EXPECT_THAT(words(), ElementsAre("raised", "raised", "raised"));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[1]));
    ASSERT_TRUE(m_viewer->muteAlert(id, "ben", "known gap", 1, std::nullopt));
    EXPECT_THAT(words(), ElementsAre("raised", "muted", "raised"));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[1]));
    ASSERT_TRUE(m_viewer->muteAlert(id, "ben", "known gap", 0, std::nullopt));
    EXPECT_THAT(words(), ElementsAre("raised", "muted", "muted"));
    ASSERT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
    ASSERT_TRUE(m_viewer->muteAlert(id, "ben", "known gap", 7, testing::SampleRepository::runTime(1)));
    EXPECT_THAT(words(), ElementsAre("muted", "raised", "raised")) << "until the second run starts";
    const std::vector<AlertState> states = [&] {
        EXPECT_TRUE(m_viewer->setCurrentJob(m_sample.salesRuns[0]));
        return readAlertStates(*m_viewer, m_sample.salesJob);
    }();
    EXPECT_THAT(alertMuteText(states.front(), std::locale::classic()),
                ::testing::MatchesRegex("Muted by ben on .* for 7 runs, at the longest until .* 2026: known gap"));
    ASSERT_TRUE(m_viewer->unmuteAlert(id));
    EXPECT_THAT(words(), ElementsAre("raised", "raised", "raised"));
}

TEST_F(AlertStatesOfSample, TheFirstRunThatRaisedAnAlertIsSearchedInALimitedPast) {
    alert("balance", MetricId::Mean, "COMPARE=0 VALUE1=5");
    testing::runScript(m_sample.path,
                       fmt::format(R"(
        WITH RECURSIVE n(i) AS (VALUES(1) UNION ALL SELECT i + 1 FROM n WHERE i < 1030)
            INSERT INTO run(job, started, finished) SELECT {0}, i * 86400000, i * 86400000 FROM n;
        CREATE TEMP TABLE rows AS SELECT f.*, r.id AS later FROM run_field f, run r
            WHERE f.run = {1} AND f.field = {2} AND r.job = {0} AND r.id > {1};
        UPDATE rows SET run = later;
        ALTER TABLE rows DROP COLUMN later;
        INSERT INTO run_field SELECT * FROM rows;)",
                                   m_sample.salesJob, m_sample.salesRuns[2], m_sample.fields.at("customers/balance")));
    const auto since = [&](int run) {
        EXPECT_TRUE(m_viewer->setCurrentJob(run));
        const AlertState state = readAlertStates(*m_viewer, m_sample.salesJob).front();
        return fmt::format("{}{}, from run {}", state.raisedLonger ? "at least " : "", state.raisedRuns,
                           state.sinceRun);
    };
    const std::vector<RunInfo> runs = readRuns(*m_viewer);
    EXPECT_EQ(fmt::format("at least 1024, from run {}", runs[1023].id), since(runs.front().id));
    EXPECT_EQ(fmt::format("130, from run {}", m_sample.salesRuns[0]), since(runs[runs.size() - 130].id));
}

/// 300 runs on random days, of which many do not have the figures, and 80 alerts of all kinds on them.
class AlertStatesOfLongHistory : public AlertStatesOfSample {
  protected:
    static constexpr int kRuns = 300;
    static constexpr int kAlerts = 80;

    struct Figures {
        std::optional<double> nulls;
        std::optional<double> mean;
    };

    void SetUp() override {
        AlertStatesOfSample::SetUp();
        m_field = m_sample.fields.at("customers/balance");
        std::string script =
            fmt::format("CREATE TEMP TABLE row AS SELECT * FROM run_field WHERE run = {0} AND field = {1};"
                        "CREATE TEMP TABLE place AS SELECT * FROM run_table WHERE run = {0} AND table_id = {2};",
                        m_sample.salesRuns[2], m_field, m_sample.tables.at("customers"));
        std::int64_t day = 20'600;
        const int first = m_sample.inventoryRun + 100; // after all others
        for (int i = 0; i < kRuns; ++i) {
            day += below(4);
            BackTestRun run;
            run.id = first + 2 * i;
            run.weekday = static_cast<int>((day + 3) % 7 + 1);
            m_runs.push_back(run);
            Figures figures;
            script += fmt::format("INSERT INTO run(id, job, started, finished) VALUES({0}, {1}, {2}, {2});"
                                  "UPDATE place SET run = {0}; INSERT INTO run_table SELECT * FROM place;",
                                  run.id, m_sample.salesJob, day * 86'400'000 + 5);
            // The field vanishes for a while, and its mean may be missing.
            if (i % 60 < 35 || below(30) == 0) {
                figures.nulls = below(20);
                figures.mean = below(3) == 0 ? std::nullopt : std::optional<double>(below(8) * 0.5 + (i < 150 ? 0 : 1));
                script += fmt::format("UPDATE row SET run = {}, null_count = {}, mean = {};"
                                      "INSERT INTO run_field SELECT * FROM row;",
                                      run.id, text(figures.nulls), text(figures.mean));
            }
            m_figures.push_back(figures);
        }
        testing::runScript(m_sample.path, script);
        // The other runs of the job are gone, so that the histories of this test are whole.
        ASSERT_TRUE(m_viewer->setCurrentJobSetup(m_sample.salesJob));
        ASSERT_TRUE(m_viewer->deleteJobs(-1, m_sample.salesRuns[2], -1));
        ASSERT_TRUE(m_viewer->beginChanges());
        for (int i = 0; i < kAlerts; ++i)
            makeAlert();
        ASSERT_TRUE(m_viewer->keepChanges());
    }

    int below(int end) { return static_cast<int>(m_random() % static_cast<unsigned>(end)); }

    [[nodiscard]] std::vector<BackTestRun> historyOf(MetricId metric) const {
        std::vector<BackTestRun> history = m_runs;
        for (std::size_t i = 0; i < history.size(); ++i)
            history[i].figure = metric == MetricId::Mean ? m_figures[i].mean : m_figures[i].nulls;
        return history;
    }

    int m_field = -1;
    std::map<int, AlertDefinition> m_alerts; ///< by id
    std::vector<BackTestRun> m_runs;
    std::vector<Figures> m_figures;

  private:
    static std::string text(const std::optional<double>& figure) {
        return figure ? fmt::format("{}", *figure) : std::string("NULL");
    }
    void makeAlert() {
        AlertDefinition alert;
        alert.table = m_sample.tables.at("customers");
        alert.field = m_field;
        alert.metric = below(2) == 0 ? MetricId::NullCount : MetricId::Mean;
        const double limit = below(5) + 0.37;
        alert.rule = {static_cast<AlertComparison>(below(7)), false, limit, limit + below(9), 1 + below(3)};
        if (below(4) == 0)
            alert.rule.runs = 20 + below(200); // needs most of the past
        if (below(4) == 0)
            alert.rule.value1 = alert.rule.comparison == AlertComparison::Greater ? -1 : 0; // nearly always raised
        alert.rule.reference = static_cast<AlertReference>(below(3));
        if (m_alerts.empty()) {
            alert.metric = MetricId::NullCount;
            alert.rule = {AlertComparison::Greater, false, -1}; // raised by every run that has the field
        }
        int id = -1;
        ASSERT_TRUE(m_viewer->createEditAlert(id, alert, "anna")) << m_viewer->getErrorString().view();
        m_alerts[id] = alert;
    }

    std::mt19937 m_random{4};
};

TEST_F(AlertStatesOfLongHistory, EveryRunIsJudgedAsASlowJudgeDoesWithoutTheLaterRuns) {
    int raised = 0;
    int longest = 0;
    for (std::size_t at = 0; at < m_runs.size(); at += at < 12 ? 1 : 13) {
        ASSERT_TRUE(m_viewer->setCurrentJob(m_runs[at].id));
        for (const AlertState& state : readAlertStates(*m_viewer, m_sample.salesJob)) {
            const AlertDefinition& alert = m_alerts.at(state.id);
            EXPECT_EQ(alert, state.definition());
            const std::vector<BackTestRun> history = historyOf(alert.metric);
            const auto verdict = testing::judgeSlowly(alert.rule, history, at);
            ASSERT_EQ(verdict, state.verdict.state) << state.sentence << ", run " << at;
            EXPECT_EQ(history[at].figure, state.figure);
            std::size_t since = at + 1;
            while (since > 0 && testing::judgeSlowly(alert.rule, history, since - 1) == AlertVerdict::State::Raised)
                --since;
            const int runs = static_cast<int>(at + 1 - since);
            ASSERT_EQ(runs, state.raisedRuns) << state.sentence << ", run " << at;
            EXPECT_EQ(runs > 0 ? history[since].id : -1, state.sinceRun);
            EXPECT_FALSE(state.raisedLonger);
            raised += runs > 0 ? 1 : 0;
            longest = std::max(longest, runs);
        }
    }
    EXPECT_GT(raised, 500);
    EXPECT_GT(longest, 16) << "further back than the first reading";
}

TEST_F(AlertStatesOfLongHistory, ABackTestOfTheStoredRunsAgreesWithTheStatesOfEachRun) {
    const std::size_t last = m_runs.size() - 40;
    ASSERT_TRUE(m_viewer->setCurrentJob(m_runs[last].id));
    int compared = 0;
    for (const AlertState& state : readAlertStates(*m_viewer, m_sample.salesJob)) {
        const std::vector<BackTestRun> runs = readWatchedFigures(*m_viewer, state.definition());
        ASSERT_EQ(last + 1, runs.size());
        const AlertBackTest test = backTest(*state.rule, runs);
        EXPECT_EQ(state.verdict, test.runs.back().verdict) << state.sentence;
        EXPECT_EQ(state.run, test.runs.back().id);
        const std::vector<BackTestRun> history = historyOf(state.definition().metric);
        for (std::size_t i = 0; i <= last; ++i) {
            ASSERT_EQ(history[i].figure, runs[i].figure) << i;
            ASSERT_EQ(history[i].weekday, runs[i].weekday) << i;
        }
        compared += test.judged;
    }
    EXPECT_GT(compared, 2000);
}

} // namespace
} // namespace tavix
