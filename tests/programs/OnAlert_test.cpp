// The program that a job starts after a run that raises an alert.
#include "Program.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace tavix::testing {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

class OnAlert : public ::testing::Test {
  protected:
    OnAlert() {
        // Writes what it gets and ends as the file "code" says.
        write("tell", "#!/bin/sh\n"
                      "cd \"$(dirname \"$0\")\"\n"
                      "for one in \"$@\"; do echo \"<$one>\"; done > arguments\n"
                      "echo \"$TAVIX_JOB $TAVIX_RUN $TAVIX_LEVEL $TAVIX_ERRORS $TAVIX_WARNINGS $TAVIX_NEW "
                      "<$TAVIX_SOURCE_PASSWORD> $TAVIX_REPOSITORY\" > environment\n"
                      "cat > input\n"
                      "echo printed\n"
                      "exit $(cat code)\n");
        std::filesystem::permissions(m_folder.file("tell"), std::filesystem::perms::owner_all);
        write("code", "0");
    }
    void write(const std::string& name, const std::string& text) {
        std::ofstream(m_folder.file(name), std::ios::binary) << text;
    }
    /// What the program wrote into a file, which is then removed.
    std::string take(const std::string& name) {
        std::stringstream text;
        text << std::ifstream(m_folder.file(name)).rdbuf();
        std::filesystem::remove(m_folder.file(name));
        return text.str();
    }
    Outcome profile(int rows, const std::string& program = "./tell", std::vector<std::string> more = {}) {
        std::string table = "n\n";
        for (int i = 0; i < rows; ++i)
            table += "1\n";
        write("t.csv", table);
        write("job.yaml", "job: J\non-alert: [" + program +
                              ", two words, \"; rm -r $HOME `id`\"]\n"
                              "tables:\n  - file: t.csv\n    alerts:\n"
                              "      - {metric: Records, max: 2, description: \"Too \\\"many\\\"\"}\n"
                              "      - {metric: Records, max: 5, level: error}\n");
        more.insert(more.begin(), {"profile", m_folder.file("job.yaml"), "-R", m_repository});
        return runTavix(std::move(more));
    }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
};

TEST_F(OnAlert, IsToldOfTheRaisedAlertsWithoutAShell) {
    ::setenv("TAVIX_SOURCE_PASSWORD", "secret", 1);
    EXPECT_EQ(profile(1).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(m_folder.file("input"))); // nothing is raised
    const Outcome second = profile(3);
    EXPECT_EQ(second.exitCode, 0) << second.err;
    EXPECT_EQ(take("arguments"), "<two words>\n<; rm -r $HOME `id`>\n");
    EXPECT_EQ(take("environment"), "J 2 warning 0 1 1 <> " + m_repository + "\n");
    const json told = json::parse(take("input"));
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0]["description"], "Too \"many\"");
    EXPECT_EQ(told[0]["figure"], 3);
    EXPECT_EQ(told[0]["job"], "J");
    // Standard output is the result of the run.
    EXPECT_THAT(second.out, Not(HasSubstr("printed")));
    EXPECT_THAT(second.err, HasSubstr("printed\n"));
    EXPECT_EQ(profile(6).exitCode, 0);
    EXPECT_EQ(take("environment"), "J 3 error 1 1 1 <> " + m_repository + "\n");
    const json worse = json::parse(take("input"));
    ASSERT_EQ(worse.size(), 2U);
    EXPECT_EQ(worse[0]["level"], "error");
    EXPECT_EQ(worse[1]["raised_runs"], 2);

    // A muted alert is not told.
    const std::string id = worse[1]["alert"].dump();
    EXPECT_EQ(runTavix({"alerts", "-R", m_repository, "-a", id, "--mute", "known"}).exitCode, 0);
    take("environment");
    EXPECT_EQ(profile(4).exitCode, 0);
    EXPECT_FALSE(std::filesystem::exists(m_folder.file("environment")));
}

TEST_F(OnAlert, TellsItsFailureByMessageAndExitCode) {
    write("code", "3");
    const Outcome failed = profile(3);
    EXPECT_EQ(failed.exitCode, 5);
    EXPECT_THAT(failed.err, HasSubstr("tavix: the program of on-alert, " + m_folder.file("tell") +
                                      ", has failed: it ended with exit code 3\n"
                                      "tavix: the run is stored, but nobody was told of its alerts\n"));
    // The exit code that --fail-at asks for goes first.
    EXPECT_EQ(profile(3, "./tell", {"--fail-at", "warning"}).exitCode, 1);
    EXPECT_EQ(profile(3, "./tell", {"--fail-at", "error"}).exitCode, 5);
    const Outcome missing = profile(3, "./nowhere");
    EXPECT_EQ(missing.exitCode, 5);
    EXPECT_THAT(missing.err, HasSubstr("tavix: the job's on-alert names a program that cannot be run here: " +
                                       m_folder.file("nowhere") + "\n"));
    EXPECT_THAT(missing.err, HasSubstr("has failed: it cannot be started: No such file or directory\n"));
    EXPECT_EQ(json::parse(runTavix({"runs", "-R", m_repository, "--format", "json"}).out).size(), 4U);
    const Outcome dry = profile(3, "nowhere-in-path", {"--dry-run"});
    EXPECT_EQ(dry.exitCode, 0);
    EXPECT_THAT(dry.err, HasSubstr("cannot be run here: nowhere-in-path\n"));
}

} // namespace
} // namespace tavix::testing
