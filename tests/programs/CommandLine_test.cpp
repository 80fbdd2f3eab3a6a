// The output, messages and exit codes of the program.
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
    EXPECT_EQ(told[0]["processed_records"], 4);
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
    expectFailure(2, {"runs", "--job", "nix"}, "there is no job \"nix\"; known: \"people\"");
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

TEST_F(CommandLine, ArgumentsAreHeldToWhatAJobFileTakes) {
    const std::string table = m_folder.file("people.csv");
    const auto profileWith = [&](const std::string& option, const std::string& value) {
        return std::vector<std::string>{"profile", table, "--percent", "50", option, value};
    };
    expectFailure(2, profileWith("--seed", "-1"), "\"-1\" is not a whole number from 0 on");
    expectFailure(2, profileWith("--seed", "1234567890123456789012"), "is not a whole number");
    expectFailure(2, profileWith("--memory", "0"), "\"0\" is not an amount of memory such as 500M or 2G");
    expectFailure(2, profileWith("--memory", "-5M"), "\"-5M\" is not an amount of memory");
    expectFailure(2, profileWith("--memory", "99999999T"), "is not an amount of memory");
    expectFailure(2, profileWith("--threads", "0"), "from 1 to 256");
    expectFailure(2, profileWith("--job", ""), "The job has no name.");
    expectFailure(2, profileWith("--job", " \t"), "The name of the job is blank.");
    expectFailure(2, profileWith("--job", std::string(2000, 'x')), "has 2000 characters; the limit is 1000");
    expectFailure(2, profileWith("--one-table", ""), "The table has no name.");
    expectFailure(2, profileWith("--description", std::string(10001, 'x')), "the limit is 10000");
    expectFailure(2, profileWith("--format", "xml"), "\"xml\" is not one of text, json, csv");
    expectFailure(2, {"tables", "--run", "0x1"}, "is not a whole number");
    EXPECT_EQ(runCount(), 1U);
    // A leading zero does not mean octal.
    EXPECT_EQ(asJson({"tables", "--run", "01"}), asJson({"tables", "--run", "1"}));
    EXPECT_EQ(run({"profile", table, "--memory", "1.5 gb", "--first", "010"}).exitCode, 0);
}

TEST_F(CommandLine, TheRepositoryIsFoundWithoutBeingNamed) {
    const auto in = [&](const std::string& folder, const std::string& before, const std::string& arguments) {
        return Program({"/bin/sh", "-c",
                        "cd '" + m_folder.file(folder) + "' && " + before + " '" + tavixCommand({}).front() + "' " +
                            arguments})
            .wait();
    };
    const Outcome here = in(".", "", "jobs --format json");
    EXPECT_EQ(here.exitCode, 0);
    EXPECT_EQ(here.err, "tavix: the repository is r.tavix\n");
    EXPECT_EQ(json::parse(here.out), asJson({"jobs"}));
    EXPECT_EQ(in(".", "", "check").exitCode, 0);
    EXPECT_EQ(in(".", "", "compare").err.find("the repository is", 30), std::string::npos) << "said once";

    std::filesystem::create_directory(m_folder.file("empty"));
    EXPECT_EQ(in("empty", "", "jobs").exitCode, 2);
    EXPECT_THAT(in("empty", "", "profile ../people.csv").err, HasSubstr("Name a repository"));
    const Outcome variable = in("empty", "TAVIX_REPOSITORY='" + m_repository + "'", "jobs --format json");
    EXPECT_EQ(variable.out, here.out);
    EXPECT_EQ(variable.err, "");
    std::filesystem::copy_file(m_repository, m_folder.file("s.tavix"));
    const Outcome two = in(".", "", "jobs");
    EXPECT_EQ(two.exitCode, 2);
    EXPECT_THAT(two.err, HasSubstr("\"r.tavix\", \"s.tavix\""));
    EXPECT_EQ(in(".", "TAVIX_REPOSITORY=s.tavix", "profile people.csv").exitCode, 0);
    EXPECT_EQ(runCount(), 1U);
}

TEST_F(CommandLine, ASubjectNeedsNoOptionWhereItIsClear) {
    EXPECT_EQ(asJson({"fields", "people"}), asJson({"fields", "--table", "people"}));
    EXPECT_EQ(asJson({"show", "people"}), asJson({"show", "--table", "people"}));
    EXPECT_EQ(asJson({"show", "people.city", "--values"}), asJson({"show", "--field", "people.city", "--values"}));
    EXPECT_EQ(asJson({"show", "--table", "people", "note.text"}), asJson({"show", "--field", "people.note.text"}));
    EXPECT_EQ(asJson({"rules", "people"}), json::array());
    EXPECT_EQ(asJson({"notes", "people.city"}), json::array());
    expectFailure(2, {"show", "nix"}, "there is no table \"nix\"; known: \"people\"");
    expectFailure(2, {"show", "people.nix"}, "has no field \"nix\"");
    expectFailure(2, {"show", "people", "--values"}, "name it with --field");
    expectFailure(2, {"show", "people.city", "--field", "people.id"}, "name the same thing twice");
    write("people.city.csv", "x\n1\n");
    ASSERT_EQ(
        run({"profile", m_folder.file("people.csv"), m_folder.file("people.city.csv"), "--job", "people"}).exitCode, 0);
    expectFailure(2, {"show", "people.city"}, "is a table and a field");
    EXPECT_EQ(asJson({"show", "people.city.x", "--values"}).size(), 1U);
}

TEST_F(CommandLine, ARunWithoutItsEmptyFilesIsPartial) {
    write("none.csv", "");
    write("more.csv", "a\n1\n");
    const std::vector<std::string> files{m_folder.file("people.csv"), m_folder.file("none.csv"),
                                         m_folder.file("more.csv")};
    const Outcome outcome = run({"profile", files[0], files[1], files[2], "--job", "three", "--format", "json"});
    EXPECT_EQ(outcome.exitCode, 4) << outcome.err;
    EXPECT_THAT(outcome.err, HasSubstr("table \"none\" is left out: " + files[1] + " is empty"));
    EXPECT_EQ(json::parse(outcome.out).size(), 2U);
    EXPECT_EQ(asJson({"tables", "--job", "three"}).size(), 2U);
    EXPECT_EQ(run({"profile", files[0], files[1], "--dry-run"}).exitCode, 4);
    expectFailure(3, {"profile", files[1]}, "is empty");
}

TEST_F(CommandLine, ADryRunEndsAsARunBegins) {
    write("job.yaml", "job: j\ntables:\n  - file: people.csv\n  - file: none.csv\n");
    expectFailure(3, {"profile", m_folder.file("job.yaml"), "--dry-run"}, "none.csv");
    write("other.csv", "x\n1\n");
    expectFailure(3,
                  {"profile", m_folder.file("people.csv"), m_folder.file("other.csv"), "--one-table", "t", "--dry-run"},
                  "the same columns");
    const Outcome outcome =
        runTavix({"profile", m_folder.file("people.csv"), "-R", m_folder.file("none/r.tavix"), "--dry-run"});
    EXPECT_EQ(outcome.exitCode, 3) << outcome.out;
    const json plan =
        asJson({"profile", m_folder.file("people.csv"), m_folder.file("other.csv"), "--first", "1", "--dry-run"});
    EXPECT_EQ(plan["tables"][1]["bytes"], 4);
    EXPECT_EQ(plan["tables"][1]["files"], 1);
    EXPECT_FALSE(plan["tables"][1]["sample"].is_null());
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
    // A file that is not a repository is left alone.
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
    expectFailure(2, {"profile", m_folder.file("bad.yaml"), "--job", "x"}, "a job file has its own");
    expectFailure(2, {"profile", m_folder.file("bad.yaml"), m_folder.file("people.csv")},
                  "cannot be combined with other files");
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
    for (const char* command : {"inspect", "profile", "jobs", "runs", "tables", "fields", "show", "rows", "compare",
                                "rules", "alerts", "findings", "functions", "notes", "delete-history"}) {
        EXPECT_THAT(help.out, HasSubstr(command));
        const Outcome own = runTavix({command, "--help"});
        EXPECT_EQ(own.exitCode, 0);
        EXPECT_THAT(own.out, AllOf(HasSubstr("--repository"), HasSubstr("Examples:\n")));
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
