// The program run as a program: what it prints, where, and what it ends with.
#include "OverPeople.h"

#include <filesystem>
#include <sstream>

namespace tavix::testing {
namespace {

using nlohmann::json;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class CommandLine : public OverPeople {};

std::string textOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

TEST_F(CommandLine, ProfilingAgainAddsARunAndTellsAboutIt) {
    const Outcome second = runTavix(
        {"profile", m_folder.file("people.csv"), "-R", m_repository, "--description", "again", "--format", "json"});
    ASSERT_EQ(second.exitCode, 0) << second.err;
    const json told = json::parse(second.out);
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0]["table"], "people");
    EXPECT_EQ(told[0]["records"], 4);
    EXPECT_EQ(told[0]["fields"], 4);
    EXPECT_EQ(told[0]["damaged_records"], 0);
    const json runs = asJson({"runs"});
    ASSERT_EQ(runs.size(), 2U);
    const json jobs = asJson({"jobs"});
    ASSERT_EQ(jobs.size(), 1U);
    EXPECT_EQ(jobs[0]["job"], "people");
    EXPECT_EQ(jobs[0]["runs"], 2);
    EXPECT_EQ(jobs[0]["last_run"], told[0]["run"]);
    EXPECT_EQ(asJson({"show"})["run"]["description"], "again");
}

TEST_F(CommandLine, WrongUsageEndsWithTwoAndSaysWhatIsThere) {
    expectFailure(2, {"show", "--field", "people.nix"}, "\"id\", \"name\", \"city\", \"note.text\"");
    expectFailure(2, {"show", "--field", "nix.id"}, "\"people\"");
    expectFailure(2, {"fields", "--table", "PEOPLE"}, "there is no table \"PEOPLE\"");
    expectFailure(2, {"runs", "--job", "nix"}, "there is no job \"nix\"; there is \"people\"");
    expectFailure(2, {"tables", "--run", "999"}, "has no run 999");
    expectFailure(2, {"show", "--values"}, "name it with --field");
    expectFailure(2, {"show", "--field", "people.id", "--format", "csv"}, "one list");
    expectFailure(2, {"runs", "--format", "xml"}, "--format");
    expectFailure(2, {"fields"}, "--table");
    expectFailure(2, {"nonsense"}, "nonsense");
    expectFailure(2, {"profile", m_folder.file("people.csv"), "--delimiter", "ab"}, "cannot separate cells");
    expectFailure(2, {"delete-history"}, "");
    write("other.csv", "a\n1\n");
    ASSERT_EQ(run({"profile", m_folder.file("other.csv")}).exitCode, 0);
    expectFailure(2, {"runs"}, "\"people\"");
    EXPECT_EQ(runTavix({"jobs"}).exitCode, 2);
    EXPECT_EQ(runTavix({}).exitCode, 2);
}

TEST_F(CommandLine, GarbageArgumentsAreRefusedAndNothingElse) {
    const std::vector<std::vector<std::string>> garbage{{"--"},
                                                        {""},
                                                        {"-"},
                                                        {"---"},
                                                        {"\xff\xfe"},
                                                        {"show", "--limit", "-1"},

                                                        {"tables", "--run", "x"},
                                                        {"delete-history", "--keep", "0", "--yes"},
                                                        {"delete-history", "--keep", "1", "--up-to", "1", "--yes"},
                                                        {"show", "--field", "."},
                                                        {"show", "--field", "\"\"\""},
                                                        {"show", "--field", std::string(100000, '.')},
                                                        {"runs", "--job", "\x1b[2J"}};
    for (const std::vector<std::string>& arguments : garbage) {
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments.back().substr(0, 20) << outcome.err.substr(0, 200);
        EXPECT_EQ(outcome.err.find('\x1b'), std::string::npos);
    }
    EXPECT_EQ(runCount(), 1U);
}

TEST_F(CommandLine, FailingSourcesAndRepositoriesEndWithThree) {
    expectFailure(3, {"profile", m_folder.file("none.csv")}, "none.csv");
    expectFailure(3, {"profile", m_folder.path().string()}, "folder");
    const std::vector<std::string> wrong{m_folder.file("none.tavix"), m_folder.file("people.csv"),
                                         m_folder.path().string(), "/proc/none/r.tavix"};
    for (const std::string& repository : wrong) {
        const Outcome outcome = runTavix({"jobs", "-R", repository});
        EXPECT_EQ(outcome.exitCode, 3) << repository;
        EXPECT_THAT(outcome.err, StartsWith("tavix: "));
        EXPECT_FALSE(std::filesystem::exists(m_folder.file("none.tavix")));
    }
    // A file that is no repository is not made one.
    std::filesystem::copy_file(m_folder.file("people.csv"), m_folder.file("other.csv"));
    EXPECT_EQ(runTavix({"profile", m_folder.file("people.csv"), "-R", m_folder.file("other.csv")}).exitCode, 3);
    EXPECT_EQ(textOf(m_folder.file("other.csv")), kPeople);
    expectFailure(3, {"jobs", "-o", m_folder.file("none/out")}, "cannot write");
    expectFailure(3, {"jobs", "-o", "/dev/full"}, "cannot write");
}

TEST_F(CommandLine, JobFilesAreCheckedBeforeAnythingRuns) {
    write("bad.yaml", "job: x\nnonsense: 1\n");
    const Outcome bad = run({"profile", m_folder.file("bad.yaml")});
    EXPECT_EQ(bad.exitCode, 2) << bad.err;
    EXPECT_THAT(bad.err, HasSubstr("bad.yaml:"));
    expectFailure(2, {"profile", m_folder.file("bad.yaml"), "--job", "x"}, "a job file says these itself");
    expectFailure(2, {"profile", m_folder.file("bad.yaml"), m_folder.file("people.csv")}, "stands alone");
    EXPECT_EQ(runCount(), 1U);
}

TEST_F(CommandLine, DamagedRowsAreCountedAndNamed) {
    write("broken.csv", "a,b\n1,2\n3\n4,5,6\n");
    const Outcome outcome = run({"profile", m_folder.file("broken.csv"), "--format", "json"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_THAT(outcome.err, HasSubstr("broken.csv: 2 damaged rows; line 3: too few cells (1 of 2), line 4: too many "
                                       "cells (3 for 2)"));
    EXPECT_EQ(json::parse(outcome.out)[0]["damaged_records"], 2);
}

TEST_F(CommandLine, AnOutputFileIsWrittenWholeOrNotAtAll) {
    write("out.json", "before");
    const std::string out = m_folder.file("out.json");
    EXPECT_EQ(run({"show", "--field", "people.nix", "-o", out}).exitCode, 2);
    EXPECT_EQ(textOf(out), "before");
    const Outcome good = run({"jobs", "--format", "json", "-o", out});
    EXPECT_EQ(good.exitCode, 0);
    EXPECT_EQ(good.out, "");
    EXPECT_EQ(json::parse(textOf(out)), asJson({"jobs"}));
}

TEST_F(CommandLine, DeletingHistoryKeepsTheLatestAndNeedsAWord) {
    for (int i = 0; i < 3; ++i)
        ASSERT_EQ(profile().exitCode, 0);
    expectFailure(2, {"delete-history", "--keep", "2"}, "confirm with --yes");
    EXPECT_EQ(runCount(), 4U);
    const json deleted = asJson({"runs"});
    const Outcome kept = run({"delete-history", "--keep", "2", "--yes", "--format", "json"});
    EXPECT_EQ(kept.exitCode, 0) << kept.err;
    EXPECT_EQ(json::parse(kept.out).size(), 2U);
    const json left = asJson({"runs"});
    ASSERT_EQ(left.size(), 2U);
    const int older = std::min(left[0]["run"].get<int>(), left[1]["run"].get<int>());
    const int newer = std::max(left[0]["run"].get<int>(), left[1]["run"].get<int>());
    expectFailure(2, {"delete-history", "--up-to", std::to_string(newer), "--yes"}, "must stay");
    EXPECT_EQ(run({"delete-history", "--up-to", std::to_string(older), "--yes"}).exitCode, 0);
    EXPECT_EQ(runCount(), 1U);
    EXPECT_THAT(run({"delete-history", "--keep", "5", "--yes"}).err, HasSubstr("nothing to delete"));
    EXPECT_EQ(asJson({"show", "--field", "people.id", "--values"}).size(), 4U);
}

TEST_F(CommandLine, HelpAndVersionAreEnough) {
    const Outcome help = runTavix({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_EQ(help.err, "");
    for (const char* command :
         {"profile", "jobs", "runs", "tables", "fields", "show", "functions", "notes", "delete-history"}) {
        EXPECT_THAT(help.out, HasSubstr(command));
        const Outcome own = runTavix({command, "--help"});
        EXPECT_EQ(own.exitCode, 0);
        EXPECT_THAT(own.out, AllOf(HasSubstr("--repository"), HasSubstr("Example")));
        std::istringstream lines(help.out + own.out);
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 100U) << line;
    }
    EXPECT_THAT(runTavix({"--version"}).out, StartsWith("tavix "));
}

TEST_F(CommandLine, ManyValuesStreamAndALeftPagerIsNoFailure) {
    std::string many = "n\n";
    for (int i = 0; i < 200000; ++i)
        many += std::to_string(i) + "\n";
    write("many.csv", many);
    ASSERT_EQ(run({"profile", m_folder.file("many.csv"), "--job", "many"}).exitCode, 0);
    const std::vector<std::string> show{"show",     "--job", "many",       "--field",  "many.n",
                                        "--values", "-R",    m_repository, "--format", "csv"};
    const Outcome all = runTavix(show);
    EXPECT_EQ(std::count(all.out.begin(), all.out.end(), '\n'), 200001);
    Program left(tavixCommand(show));
    left.closeOutput();
    const Outcome outcome = left.wait();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
}

} // namespace
} // namespace tavix::testing
