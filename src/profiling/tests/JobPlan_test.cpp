// What a run would read, and how empty files are left out.
#include "profiling/JobPlan.h"
#include "profiling/JobRunner.h"
#include "profiling/tests/StoredRuns.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

namespace tavix::profiling {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class JobPlans : public tavix::testing::StoredRuns {
  protected:
    job::JobDescription job(const std::string& tables) {
        auto read = job::readJobFile(write("job.yaml", "job: j\ntables:\n" + tables));
        EXPECT_TRUE(read.ok()) << read.error().text;
        return read ? std::move(*read) : job::JobDescription();
    }
    /// The error of a run; a plan must report the same one.
    std::string failure(const job::JobDescription& wanted, const std::string& repository) {
        const auto plan = planJob(wanted, repository, {});
        const auto run = runJob(wanted, repository);
        EXPECT_FALSE(plan.ok());
        EXPECT_FALSE(run.ok());
        if (plan || run)
            return {};
        EXPECT_EQ(plan.error().text, run.error().text);
        return plan.error().text;
    }
};

TEST_F(JobPlans, APlanFailsWhereARunDoes) {
    write("a.csv", "x,y\n1,2\n");
    write("b.csv", "x\n1\n");
    write("e.csv", "");
    std::filesystem::create_directory(m_folder.file("d"));
    EXPECT_THAT(failure(job("  - file: none.csv\n"), m_repository), HasSubstr("No such file"));
    EXPECT_THAT(failure(job("  - file: d\n"), m_repository), HasSubstr("is a folder"));
    EXPECT_THAT(failure(job("  - file: e.csv\n"), m_repository), HasSubstr("is empty"));
    EXPECT_THAT(failure(job("  - {files: [a.csv, b.csv], name: n}\n"), m_repository), HasSubstr("the same columns"));
    EXPECT_THAT(failure(job("  - {file: a.csv, key: [z]}\n"), m_repository), HasSubstr("no field \"z\""));
    EXPECT_THAT(failure(job("  - file: a.csv\n"), m_folder.file("none/r.tavix")), HasSubstr("does not exist"));
    EXPECT_THAT(failure(job("  - file: a.csv\n"), m_folder.path().string()), HasSubstr("is a folder"));
    EXPECT_FALSE(std::filesystem::exists(m_repository)) << "neither has made it";
}

TEST_F(JobPlans, UnknownFieldsAreNamedWithTheirPlace) {
    write("a.csv", "id,price\n1,2\n");
    const std::string head = "job: j\ntables:\n  - file: a.csv\n";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {head + "    key: [id, prize]\n",
         "4:15: The key of the table \"a\": there is no field \"prize\" (did you mean \"price\"?)."},
        {head + "    alerts:\n      - {field: [id, pric], metric: Mean, max: 1}\n",
         "5:22: An alert: the table \"a\" has no field \"pric\" (did you mean \"price\"?)."},
        {head + "    alerts:\n      - {field: ix, metric: Mean, max: 1}\n",
         "5:17: An alert: the table \"a\" has no field \"ix\" (did you mean \"id\"?)."},
        {head + "collections:\n  - name: C\n    fields: [a.id, a.pric]\n",
         "6:20: Collection \"C\": the table \"a\" has no field \"pric\" (did you mean \"price\"?)."},
    };
    for (const auto& [text, expected] : cases) {
        const auto read = job::readJobFile(write("job.yaml", text));
        ASSERT_TRUE(read.ok()) << read.error().text;
        EXPECT_EQ(checkFields(*read).error().text, m_folder.file("job.yaml") + ":" + expected);
    }
}

TEST_F(JobPlans, APlanTellsWhatIsReadAndRemarksOnExpressions) {
    write("a.csv", "x,y\n1,2\n");
    write("b.csv", "x,y\n1,2\n3,4\n");
    ASSERT_EQ(::mkfifo(m_folder.file("pipe").c_str(), 0600), 0);
    const auto plan = planJob(job("  - {files: [a.csv, b.csv], name: both, sample: {first: 1}}\n"
                                  "  - {name: some, based on: both, where: \"trim(`x`) > 1\"}\n"
                                  "  - file: pipe\n"),
                              m_repository, {});
    ASSERT_TRUE(plan.ok()) << plan.error().text;
    ASSERT_EQ(plan->tables.size(), 3U);
    EXPECT_EQ(plan->tables[0].files, 2);
    EXPECT_EQ(plan->tables[0].bytes, 20);
    EXPECT_EQ(plan->tables[0].fields, 2);
    EXPECT_EQ(plan->tables[0].sample, "the first row");
    EXPECT_EQ(plan->tables[1].reads, "the rows of both");
    EXPECT_EQ(plan->tables[2].bytes, std::nullopt) << "a pipe is not looked into";
    EXPECT_THAT(plan->remarks, ElementsAre(HasSubstr("job.yaml:4:41: the condition of the table \"some\"")));
    EXPECT_FALSE(std::filesystem::exists(m_repository));
}

TEST_F(JobPlans, EmptyFilesAreLeftOutAndTheOthersStored) {
    write("a.csv", "x\n1\n");
    write("b.csv", "");
    write("c.csv", "\xEF\xBB\xBF\r\n\n");
    write("d.csv", "x\n1\n2\n");
    const job::JobDescription wanted = job("  - file: a.csv\n"
                                           "  - {file: b.csv, key: [x], alerts: [{metric: Records, min: 1}]}\n"
                                           "  - {name: f, based on: b, where: \"`x` == '1'\"}\n"
                                           "  - {files: [b.csv, c.csv, d.csv], name: set}\n"
                                           "collections:\n"
                                           "  - {name: C, fields: [a.x, b.x]}\n"
                                           "  - {name: D, fields: [f.x]}\n");
    const std::vector<EmptyFile> left{{m_folder.file("b.csv"), "b", false},
                                      {m_folder.file("b.csv"), "set", true},
                                      {m_folder.file("c.csv"), "set", true}};
    EXPECT_EQ(planJob(wanted, m_repository, {})->leftOut, left);
    const auto run = runJob(wanted, m_repository);
    ASSERT_TRUE(run.ok()) << run.error().text;
    EXPECT_EQ(run->leftOut, left);
    EXPECT_EQ(stored("SELECT coalesce(object_name, ''), table_name, total_records FROM v_tables ORDER BY table_id"),
              "|a|1\n|set|2\n");
    EXPECT_EQ(stored("SELECT collection, count(*) FROM v_collections GROUP BY collection"), "C|1\n");
    EXPECT_THAT(stored("SELECT text FROM v_log WHERE level = 1"),
                HasSubstr("table \"b\" is left out: " + m_folder.file("b.csv") + " is empty.\n"));
    // Nothing to leave out.
    EXPECT_THAT(runJob(job("  - file: a.csv\n"), m_repository)->leftOut, IsEmpty());
}

TEST_F(JobPlans, AGuessedEncodingIsSaidAndLogged) {
    write("a.csv", "x\n\xE4\n");
    const auto run = runJob(job("  - file: a.csv\n"), m_repository);
    ASSERT_TRUE(run.ok()) << run.error().text;
    EXPECT_THAT(run->tables[0].remarks, ElementsAre(HasSubstr("a.csv is not UTF-8 and read as windows-1252")));
    EXPECT_THAT(stored("SELECT text FROM v_log"), HasSubstr("read as windows-1252"));
    EXPECT_THAT(runJob(job("  - {file: a.csv, encoding: 1252}\n"), m_repository)->tables[0].remarks, IsEmpty());
}

} // namespace
} // namespace tavix::profiling
