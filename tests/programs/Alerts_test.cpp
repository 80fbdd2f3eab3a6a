// Alerts, from the job file to the exit code.
#include "CsvText.h"
#include "Program.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>

namespace tavix::testing {
namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class Alerts : public ::testing::Test {
  protected:
    void write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file(name), std::ios::binary) << text;
    }
    Outcome profile(const std::string& table, std::vector<std::string> more = {}) {
        write("t.csv", table);
        write("job.yaml", R"yaml(job: watched
source: files
tables:
  - file: t.csv
    custom metrics:
      - {name: Sum, output: pieces, sum: "tonumber(`n`)"}
    rules:
      - {name: Positive, condition: "tonumber(`n`) > 0"}
    alerts:
      - {field: n, metric: Null Count, max: 0, level: error}
      - {field: [n, c], metric: Unique Count, change: 1}
      - {custom metric: Sum, change: 50 %, runs: 2}
      - {rule: Positive, figure: percent, max: 25}
      - {metric: Records, range: [2, 4], description: As many as usual}
)yaml");
        more.insert(more.begin(), {"profile", m_folder.file("job.yaml"), "-R", m_repository});
        return runTavix(std::move(more));
    }
    std::vector<std::string> states(const std::string& run) {
        const Outcome outcome = runTavix({"alerts", "-R", m_repository, "--run", run, "--format", "json"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        std::vector<std::string> lines;
        for (const json& alert : json::parse(outcome.out))
            lines.push_back(alert["condition"].get<std::string>() + ": " + alert["state"].get<std::string>() + " " +
                            alert["figure"].dump() + " " + alert["reference"].dump());
        return lines;
    }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
};

TEST_F(Alerts, AreCheckedAfterEveryRun) {
    const Outcome first = profile("n,c\n1,a\n2,b\n", {"--fail-at", "warning"});
    EXPECT_EQ(first.exitCode, 0) << first.err;
    const Outcome second = profile("n,c\n3,a\n4,b\n", {"--fail-at", "warning"});
    EXPECT_EQ(second.exitCode, 1) << second.err;
    const Outcome third = profile("n,c\n-1,a\n,b\n9,c\n9,d\n9,e\n", {"--fail-at", "error"});
    EXPECT_EQ(third.exitCode, 1);
    EXPECT_THAT(third.err, HasSubstr("tavix: error: t: Null Count for field n is greater than 0 (it is 1)\n"
                                     "tavix: warning: t: Unique Count for field c has changed by more than 1 "
                                     "(it is 5, was 2)\n"));
    EXPECT_THAT(third.err, HasSubstr("1 alert is raised at level error"));
    // The list of tables is still written.
    EXPECT_THAT(third.out, HasSubstr("watched"));
    EXPECT_THAT(states("2"), ElementsAre("Null Count for field n is greater than 0: quiet 0 null",
                                         "Unique Count for field n has changed by more than 1: quiet 2 2",
                                         "Unique Count for field c has changed by more than 1: quiet 2 2",
                                         "pieces for custom metric Sum has changed by more than 50% "
                                         "against the mean of 2 runs: raised 7 3",
                                         "Percentage of failed rows for business rule Positive is greater than 25: "
                                         "quiet 0 null",
                                         "Number of records is outside the range 2 to 4: quiet 2 null"));
    EXPECT_THAT(states("3"), ElementsAre("Null Count for field n is greater than 0: raised 1 null",
                                         "Unique Count for field n has changed by more than 1: quiet 2 2",
                                         "Unique Count for field c has changed by more than 1: raised 5 2",
                                         "pieces for custom metric Sum has changed by more than 50% "
                                         "against the mean of 2 runs: raised 26 5",
                                         "Percentage of failed rows for business rule Positive is greater than 25: "
                                         "raised 40 null",
                                         "Number of records is outside the range 2 to 4: raised 5 null"));
    EXPECT_EQ(runTavix({"alerts", "-R", m_repository, "--raised", "--fail-at", "warning"}).exitCode, 1);
    EXPECT_EQ(runTavix({"alerts", "-R", m_repository, "--run", "1", "--fail-at", "warning"}).exitCode, 0);
    // A run without alerts removes those of its job.
    const Outcome without =
        runTavix({"profile", m_folder.file("t.csv"), "-R", m_repository, "--job", "watched", "--fail-at", "warning"});
    EXPECT_EQ(without.exitCode, 0);
    EXPECT_THAT(without.err, HasSubstr("--fail-at has no effect: the job \"watched\" has no alert"));
    EXPECT_EQ(runTavix({"alerts", "-R", m_repository, "--format", "json"}).out, "[]\n");
}

TEST_F(Alerts, ADryRunTellsAndWritesNothing) {
    const Outcome first = profile("n,c\n1,a\n", {"--dry-run", "--format", "json"});
    ASSERT_EQ(first.exitCode, 0) << first.err;
    EXPECT_FALSE(std::filesystem::exists(m_repository));
    json plan = json::parse(first.out);
    EXPECT_EQ(plan["run"]["runs"], 0);
    EXPECT_TRUE(plan["run"]["last_run_seconds"].is_null());
    ASSERT_EQ(plan["tables"].size(), 1U);
    EXPECT_EQ(plan["tables"][0]["bytes"], 8);
    EXPECT_EQ(plan["tables"][0]["alerts"], 6);
    EXPECT_EQ(plan["figures"].size(), 3U);
    ASSERT_EQ(profile("n,c\n1,a\n").exitCode, 0);
    plan = json::parse(profile("n,c\n1,a\n", {"--dry-run", "--format", "json"}).out);
    EXPECT_EQ(plan["run"]["runs"], 1);
    EXPECT_TRUE(plan["run"]["last_run_seconds"].is_number());
    EXPECT_EQ(readCsv(profile("n,c\n1,a\n", {"--dry-run", "--format", "csv"}).out).size(), 2U);
}

} // namespace
} // namespace tavix::testing
