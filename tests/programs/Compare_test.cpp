#include "base/tests/SourceFolder.h"
// `tavix compare`; the expected output is in tests/programs/compare.
#include "Program.h"
#include "base/tests/TempFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace tavix::testing {
namespace {

using ::testing::HasSubstr;

const std::filesystem::path kFolder = testing::sourceFile("tests/programs/compare");

std::string textOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

class Compare : public ::testing::Test {
  protected:
    void profile(const std::string& table, const std::string& job) {
        const auto overwrite = std::filesystem::copy_options::overwrite_existing;
        std::filesystem::copy_file(kFolder / table, m_folder.file("people.csv"), overwrite);
        std::filesystem::copy_file(kFolder / job, m_folder.file("job.yaml"), overwrite);
        const Outcome outcome = runTavix({"profile", m_folder.file("job.yaml"), "-R", m_repository});
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    }
    Outcome compare(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"compare", "-R", m_repository});
        return runTavix(std::move(arguments));
    }

    TempFolder m_folder;
    std::string m_repository = m_folder.file("r.tavix");
};

TEST_F(Compare, ListsWhatChangedInEveryFormat) {
    profile("before.csv", "job.yaml");
    profile("after.csv", "job-after.yaml");
    EXPECT_EQ(compare({}).out, textOf(kFolder / "expected.txt"));
    EXPECT_EQ(compare({"--format", "csv"}).out, textOf(kFolder / "expected.csv"));
    EXPECT_EQ(compare({"--format", "json", "--top", "0"}).out, textOf(kFolder / "expected.json"));
    EXPECT_EQ(compare({"--run", "2", "--run", "2"}).out, "No difference\n");
    EXPECT_EQ(compare({"--run", "2", "--run", "2", "--format", "json"}).out, "[]\n");
}

TEST_F(Compare, TakesTheLastTwoRunsOrTheOneBefore) {
    profile("before.csv", "job.yaml");
    EXPECT_THAT(compare({}).err, HasSubstr("has one run only"));
    profile("after.csv", "job.yaml");
    profile("after.csv", "job.yaml");
    EXPECT_EQ(compare({}).out, "No difference\n");
    const Outcome second = compare({"--run", "2", "--top", "0"});
    EXPECT_THAT(second.err, HasSubstr("run 1 of job \"people\" compared with run 2"));
    EXPECT_THAT(second.out, HasSubstr("Processed records"));
    // In both directions.
    EXPECT_THAT(compare({"--run", "2", "--run", "1", "--format", "csv"}).out,
                HasSubstr("people,extra,field,vanished,"));
    for (const std::vector<std::string>& wrong : std::vector<std::vector<std::string>>{
             {"--run", "1"}, {"--run", "9"}, {"--table", "nobody"}, {"--top", "-1"}, {"--job", "other"}}) {
        const Outcome outcome = compare(wrong);
        EXPECT_EQ(outcome.exitCode, 2) << wrong.front() << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
}

} // namespace
} // namespace tavix::testing
