// Alerts of users: tried, added, muted, noted, exported and removed with the tool.
#include "Program.h"
#include "base/LoginName.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fstream>

namespace tavix::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;

constexpr const char* kJob = "job: watched\n"
                             "tables:\n"
                             "  - name: t\n"
                             "    file: t.csv\n"
                             "    custom metrics:\n"
                             "      - {name: Sum, output: pieces, sum: \"tonumber(`n`)\"}\n"
                             "    rules:\n"
                             "      - {name: Positive, condition: \"tonumber(`n`) > 0\"}\n"
                             "    alerts:\n"
                             "      - {field: n, metric: Null Count, max: 0}\n";

class AlertsOfUsers : public ::testing::Test {
  protected:
    void write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file(name), std::ios::binary) << text;
    }
    /// Profiles a table of the numbers 1 to `rows`.
    Outcome profile(int rows, std::vector<std::string> more = {}) {
        std::string table = "n\n";
        for (int i = 1; i <= rows; ++i)
            table += std::to_string(i) + "\n";
        write("t.csv", table);
        write("job.yaml", m_job);
        more.insert(more.begin(), {"profile", m_folder.file("job.yaml"), "-R", m_repository});
        return runTavix(std::move(more));
    }
    Outcome alerts(std::vector<std::string> more) {
        more.insert(more.begin(), {"alerts", "-R", m_repository});
        return runTavix(std::move(more));
    }
    json listed(std::vector<std::string> more = {}) {
        more.insert(more.end(), {"--format", "json"});
        const Outcome outcome = alerts(std::move(more));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return json::parse(outcome.out);
    }
    /// Adds an alert and returns its number.
    std::string add(const std::string& entry) {
        const json added = listed({"--table", "t", "--add", entry});
        EXPECT_EQ(added.size(), 1U);
        return added.at(0)["alert"].dump();
    }
    std::vector<std::string> verdicts(const json& trial) {
        std::vector<std::string> words;
        for (const json& run : trial["runs"])
            words.push_back(run["figure"].dump() + " " + run["verdict"].get<std::string>());
        return words;
    }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
    std::string m_job = kJob;
};

TEST_F(AlertsOfUsers, AreTriedBeforeTheyAreAdded) {
    for (const int rows : {10, 11, 10, 12, 30, 11})
        ASSERT_EQ(profile(rows).exitCode, 0);
    const json trial = listed({"--table", "t", "--try", "metric: Records, change: 50 %, runs: 3, against: median"});
    EXPECT_EQ(trial["back_test"]["runs"], 6);
    EXPECT_EQ(trial["back_test"]["judged"], 5);
    EXPECT_EQ(trial["back_test"]["raised"], 1);
    EXPECT_EQ(trial["back_test"]["last_raised_run"], 5);
    EXPECT_EQ(trial["back_test"]["condition"],
              "Number of records has changed by more than 50% against the median of 3 runs");
    EXPECT_THAT(verdicts(trial),
                ElementsAre("10 cannot be judged", "11 quiet", "10 quiet", "12 quiet", "30 raised", "11 quiet"));
    EXPECT_FALSE(trial["proposals"].empty());
    // Nothing was stored, and a run knows only those before it.
    EXPECT_EQ(listed().size(), 1U);
    const json earlier = listed({"--run", "4", "--table", "t", "--try", "custom metric: Sum, max: 60"});
    EXPECT_THAT(verdicts(earlier), ElementsAre("55 quiet", "66 raised", "55 quiet", "78 raised"));

    // A proposal is an entry of a job file.
    for (const json& proposal : trial["proposals"]) {
        const json again =
            listed({"--table", "t", "--try", "metric: Records, " + proposal["entry"].get<std::string>()});
        EXPECT_EQ(again["back_test"]["raised"], proposal["raised"]) << proposal;
    }

    const std::string id = add("{rule: Positive, figure: percent, max: 1, level: error, description: Own}");
    EXPECT_THAT(verdicts(listed({"--alert", id, "--back-test"})), ::testing::Each(EndsWith("0 quiet")));
    const Outcome all = alerts({"--back-test"});
    EXPECT_THAT(all.out, HasSubstr("Null Count for field n is greater than 0"));
    EXPECT_THAT(all.out, HasSubstr("Percentage of failed rows for business rule Positive is greater than 1"));
}

TEST_F(AlertsOfUsers, AreMutedForRunsThatThenDoNotFail) {
    ASSERT_EQ(profile(2).exitCode, 0);
    ASSERT_EQ(profile(5).exitCode, 0);
    const std::string id = add("metric: Records, max: 4");
    const Outcome third = profile(6, {"--fail-at", "warning"});
    EXPECT_EQ(third.exitCode, 1);
    EXPECT_THAT(third.err, HasSubstr("tavix: warning: t: Number of records is greater than 4 (it is 6; raised since "
                                     "run 2)\n"));
    const json muted = listed({"--alert", id, "--mute", "Known until Monday", "--for", "2"})["alert"];
    EXPECT_EQ(muted["state"], "muted");
    EXPECT_EQ(muted["verdict"], "raised");
    EXPECT_EQ(muted["mute_reason"], "Known until Monday");
    EXPECT_EQ(muted["muted_by"], loginName());
    EXPECT_EQ(muted["raised_runs"], 2);
    const Outcome fourth = profile(7, {"--fail-at", "warning"});
    EXPECT_EQ(fourth.exitCode, 0) << fourth.err;
    EXPECT_THAT(fourth.err, HasSubstr("tavix: 1 raised alert is muted; \"tavix alerts\" lists it\n"));
    EXPECT_THAT(alerts({}).out, HasSubstr("Number of records is greater than 4; muted: Known until Monday"));
    EXPECT_EQ(listed({"--raised"}), json::array());
    // The mute covers two runs, and none before it.
    EXPECT_EQ(profile(8, {"--fail-at", "warning"}).exitCode, 1);
    EXPECT_EQ(listed({"--run", "2", "--raised"}).size(), 1U);
    EXPECT_EQ(listed({"--run", "4", "--raised"}).size(), 0U);

    EXPECT_EQ(listed({"--alert", id, "--mute", "Again", "--until", "2999-12-31 08:30"})["alert"]["muted_until"],
              "2999-12-31 08:30:00");
    EXPECT_EQ(profile(9, {"--fail-at", "warning"}).exitCode, 0);
    EXPECT_EQ(listed({"--alert", id, "--unmute"})["alert"]["state"], "raised");
    EXPECT_THAT(alerts({"--alert", id, "--unmute"}).err, HasSubstr("is not muted"));
}

TEST_F(AlertsOfUsers, OutliveRunsAndAreExportedToJobFiles) {
    ASSERT_EQ(profile(3).exitCode, 0);
    const std::string id = add("field: n, metric: Mean, change: 20 %, runs: 4, against: weekday, description: 'a: b'");
    const json noted = listed({"--alert", id, "--note", "Asked\nthe warehouse"});
    EXPECT_EQ(noted["notes"].at(0)["note"], "Asked\nthe warehouse");
    EXPECT_EQ(noted["notes"].at(0)["user"], loginName());
    EXPECT_EQ(noted["changes"], json::array());
    const std::string entry =
        "{field: 'n', metric: Mean, change: 20 %, runs: 4, against: weekday, description: 'a: b'}\n";
    const Outcome written = alerts({"--export"});
    EXPECT_EQ(written.exitCode, 0);
    EXPECT_THAT(written.out,
                ::testing::StartsWith("tables:\n  - name: t\n    alerts:\n      # Made by " + loginName()));
    EXPECT_THAT(written.out, EndsWith("\n      - " + entry));

    m_job += "      - " + entry;
    ASSERT_EQ(profile(3).exitCode, 0);
    const json both = listed();
    ASSERT_EQ(both.size(), 3U);
    EXPECT_EQ(both[1]["origin"], "job");
    EXPECT_EQ(both[2]["origin"], "user");
    EXPECT_EQ(both[2]["author"], loginName());
    EXPECT_EQ(both[2]["alert"].dump(), id);
    for (const char* same : {"condition", "description", "figure", "reference", "state", "level"})
        EXPECT_EQ(both[1][same], both[2][same]) << same;

    // A changed limit of the job's alert is kept in its history.
    const std::string jobs = both[0]["alert"].dump();
    m_job.replace(m_job.find("max: 0"), 6, "max: 5");
    ASSERT_EQ(profile(3).exitCode, 0);
    const json changes = listed({"--alert", jobs})["changes"];
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_THAT(changes[0]["before"], HasSubstr("is greater than 0"));
    EXPECT_THAT(changes[0]["after"], HasSubstr("is greater than 5"));

    EXPECT_THAT(alerts({"--alert", jobs, "--remove", "--yes"}).err, HasSubstr("is defined by the job file"));
    EXPECT_EQ(alerts({"--alert", id, "--remove"}).exitCode, 2); // no terminal to ask on
    EXPECT_EQ(listed().size(), 3U);
    EXPECT_THAT(alerts({"--alert", id, "--remove", "-y"}).err, HasSubstr("tavix: removed alert " + id + ": t: Mean"));
    EXPECT_EQ(listed().size(), 2U);
}

TEST_F(AlertsOfUsers, OfAllJobsAreListedByOneCommand) {
    ASSERT_EQ(profile(3).exitCode, 0);
    m_job.replace(m_job.find("watched"), 7, "other");
    m_job += "      - {metric: Records, max: 3}\n";
    ASSERT_EQ(profile(4).exitCode, 0);
    std::vector<std::string> lines;
    for (const json& alert : listed({"--all"}))
        lines.push_back(alert["job"].get<std::string>() + " " + alert["run"].dump() + " " +
                        alert["condition"].get<std::string>() + ": " + alert["state"].get<std::string>());
    EXPECT_THAT(lines, ElementsAre("watched 1 Null Count for field n is greater than 0: quiet",
                                   "other 2 Null Count for field n is greater than 0: quiet",
                                   "other 2 Number of records is greater than 3: raised"));
    EXPECT_EQ(alerts({"--all", "--fail-at", "error"}).exitCode, 0);
    EXPECT_EQ(alerts({"--all", "--fail-at", "warning"}).exitCode, 1);
}

TEST_F(AlertsOfUsers, NameMistakesBeforeAnythingIsStored) {
    ASSERT_EQ(profile(3).exitCode, 0);
    struct Case {
        std::vector<std::string> arguments;
        const char* message;
    };
    const std::vector<Case> cases{
        {{"--add", "metric: Records, max: 1"}, "an alert of which table? Name it with --table"},
        {{"-t", "t", "--add", "field: x, metric: Mean, max: 1"}, "field"},
        {{"-t", "t", "--add", "rule: Negative, max: 1"},
         "In the alert, at character 7: table \"t\" has no rule \"Negative\"."},
        {{"-t", "t", "--add", "field: [n, x], metric: Mean, max: 1"}, "field"},
        {{"--mute", "why"}, "which alert? Name it with --alert; \"tavix alerts\" lists the numbers"},
        {{"-a", "99", "--mute", "why"}, "the job \"watched\" has no alert 99"},
        {{"-a", "1", "--mute", "  "}, "--mute needs a reason"},
        {{"-a", "1", "--mute", "why", "--until", "tomorrow"},
         "--until: expected a date such as 2026-12-01 or \"2026-12-01 08:00\", not \"tomorrow\""},
        {{"-a", "1", "--mute", "why", "--unmute"}, "--mute and --unmute exclude each other"},
        {{"-a", "1", "--for", "3"}, "--for and --until go with --mute"},
        {{"--all", "--run", "1"}, "--all lists the alerts of all jobs; it does not go with --job or --run"},
        {{"--export", "--format", "json"}, "--export writes job YAML: leave out --format"},
    };
    for (const Case& one : cases) {
        const Outcome outcome = alerts(one.arguments);
        EXPECT_EQ(outcome.exitCode, 2) << one.message;
        EXPECT_THAT(outcome.err, HasSubstr(one.message));
        EXPECT_EQ(outcome.out, "") << one.message;
    }
    EXPECT_EQ(listed().size(), 1U);
}

} // namespace
} // namespace tavix::testing
