#include "base/tests/TempFolder.h"
#include "repository/RepositoryCheck.h"
#include "repository/RunChecksums.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "support/SampleRepository.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace tavix::repository {
namespace {

using tavix::testing::SampleRepository;
using tavix::testing::TempFolder;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct Column {
    std::string name;
    std::string type;
};

class RunChecksums : public ::testing::Test {
  protected:
    void SetUp() override {
        auto writer = RunWriter::begin(m_sample.path, {"Rules", "", "", {}});
        ASSERT_TRUE(writer);
        TableFacts table;
        table.name = "t";
        table.isTextFile = true;
        table.textFile.path = "/data/t.csv";
        const int id = *(*writer)->addTable(table);
        FieldFacts field;
        field.name = "x";
        field.ordinal = 1;
        ASSERT_TRUE((*writer)->addField(id, field));
        ASSERT_TRUE((*writer)->addCustomMetric(id, {"Sum", "total", false, "sum", "`x`", {{"x", {}}}, 0.5, 9, 1}));
        BusinessRuleFacts rule{"Positive", "`x` > 0", {"x"}, 10, 1, 0, {"x"}, 1, {}};
        rule.log.push_back({100, {KvbString("7")}});
        ASSERT_TRUE((*writer)->addBusinessRule(id, rule));
        ASSERT_TRUE((*writer)->addLog(id, LogLevel::Warning, "a line"));
        ASSERT_TRUE((*writer)->commit({}));
        auto opened = openRepository(m_sample.path, sql::OpenMode::Write);
        ASSERT_TRUE(opened);
        m_connection = std::move(*opened);
    }

    /// The damaged parts, as "run/table/problem".
    std::vector<std::string> damage() {
        std::vector<std::string> found;
        const Status done = checkRepository(*m_connection, [&](const CheckFinding& finding) {
            if (finding.state == Soundness::Damaged)
                found.push_back(fmt::format("{}/{}/{}", finding.run, finding.table, finding.problem));
        });
        EXPECT_TRUE(done);
        return found;
    }

    std::vector<Column> columnsOf(const std::string& table) {
        auto select = m_connection->prepare("SELECT name, type FROM pragma_table_info(?1)");
        select->bind(1, table);
        std::vector<Column> columns;
        while (select->step() == sql::Step::Row)
            columns.push_back({std::string(select->text(0)), std::string(select->text(1))});
        return columns;
    }

    TempFolder m_folder;
    SampleRepository m_sample = SampleRepository::build(m_folder.file("sample.tavix"));
    std::unique_ptr<sql::Connection> m_connection;
};

TEST_F(RunChecksums, FindNothingInARepositoryThatIsWhole) {
    std::set<Soundness> states;
    int findings = 0;
    ASSERT_TRUE(checkRepository(*m_connection, [&](const CheckFinding& finding) {
        states.insert(finding.state);
        ++findings;
    }));
    EXPECT_EQ(states, std::set{Soundness::Sound});
    EXPECT_EQ(findings, 1 + 5 + (6 + 7 + 7 + 1 + 1)) << "the file, the runs and their tables";
    EXPECT_EQ(*describeDamage(*m_connection, m_sample.salesRuns[0]), "");
}

TEST_F(RunChecksums, NoticeAChangeInAnyColumnOfARun) {
    // These only speed up reading: without them, or with others, the result is the same. Blocks have their own
    // checksums.
    const std::set<std::string> kUncovered{"distribution_block.id", "distribution_block.payload",
                                           "distribution_block.other_field"};
    int changed = 0;
    for (const char* table : {"run", "run_table", "run_file", "run_field", "percentile", "outlier", "histogram",
                              "distribution_block", "execution_log", "run_custom_metric", "custom_metric_input",
                              "run_rule", "rule_input", "rule_row", "run_checksum"}) {
        for (const Column& column : columnsOf(table)) {
            if (column.name == "run" || (column.name == "id" && table == std::string("run")) ||
                kUncovered.contains(fmt::format("{}.{}", table, column.name)))
                continue;
            auto undone = sql::Transaction::begin(*m_connection);
            ASSERT_TRUE(undone && m_connection->execute("PRAGMA defer_foreign_keys = ON"));
            // Of the last run that has rows in it.
            const std::string key = table == std::string("run") ? "id" : "run";
            const std::string sql = fmt::format(
                "UPDATE {0} SET {1} = CASE typeof({1}) WHEN 'null' THEN {2} WHEN 'text' THEN {1} || 'x' WHEN 'blob' "
                "THEN "
                "zeroblob(length({1}) + 1) ELSE {1} + 1000 END WHERE {3} = (SELECT MAX({3}) FROM {0}) AND {1} IS "
                "(SELECT MIN({1}) FROM {0} WHERE {3} = (SELECT MAX({3}) FROM {0}))",
                table, column.name, column.type == "TEXT" ? "'x'" : "7", key);
            if (!m_connection->execute(sql)) {
                EXPECT_THAT(m_connection->errorText(), HasSubstr("refuses the values")) << sql;
                continue; // the table's constraints forbid it
            }
            ++changed;
            EXPECT_FALSE(damage().empty()) << table << "." << column.name;
        }
    }
    EXPECT_GT(changed, 90);
}

TEST_F(RunChecksums, NoticeNamesRowsThatMovedAndBits) {
    const int run = m_sample.salesRuns[2];
    const std::string ofRun = fmt::format(" WHERE run = {}", run);
    struct {
        std::string change;
        std::string problem;
    } const kCases[] = {
        {"UPDATE field SET name = 'cita' WHERE name = 'city'", "metrics of fields: not what was stored"},
        {"UPDATE profiled_table SET name = 'x' WHERE name = 'orders'", "list of tables"},
        {"DELETE FROM percentile" + ofRun, "percentiles, outliers"},
        {"DELETE FROM histogram" + ofRun, "percentiles, outliers, histograms"},
        {"UPDATE run_field SET null_count = null_count + 1" + ofRun, "customers/metrics of fields"},
        {"UPDATE distribution_block SET payload = CAST(substr(payload, 1, length(payload) - 1) || x'00' AS BLOB)" +
             ofRun,
         "A stored distribution is damaged"},
        {"UPDATE value_hash SET hashes = CAST(substr(hashes, 1, length(hashes) - 1) || x'00' AS BLOB)" + ofRun,
         "damaged"},
        {"DELETE FROM execution_log" + ofRun, "execution log"},
        {"UPDATE type_breakdown SET reading = 'date'" + ofRun, "orders/percentiles, outliers"},
        {"UPDATE type_form SET example = 'x'" + ofRun, "orders/percentiles, outliers"},
        {"UPDATE finding SET likelihood = 2" + ofRun + " AND field = 0", "orders/percentiles, outliers"},
        {"UPDATE run_examination SET expressions = 2" + ofRun, "list of tables"},
    };
    for (const auto& [change, problem] : kCases) {
        auto undone = sql::Transaction::begin(*m_connection);
        ASSERT_TRUE(undone && m_connection->execute(change)) << m_connection->errorText();
        EXPECT_THAT(damage(), ::testing::Contains(HasSubstr(problem))) << change;
    }
    EXPECT_THAT(damage(), IsEmpty()) << "all of it was undone";
}

TEST_F(RunChecksums, OfRunsWithoutHistogramsTypesAndFindingsRemainValid) {
    // All forms cover the same rows in the other parts.
    ASSERT_TRUE(m_connection->execute("UPDATE run_checksum SET form = 1 WHERE part NOT IN ('lists', 'tables')"));
    EXPECT_THAT(damage(), IsEmpty());
    ASSERT_TRUE(m_connection->execute("UPDATE run_checksum SET form = 1"));
    EXPECT_THAT(damage(), ::testing::Contains(HasSubstr("histograms"))) << "the form belongs to the sum";
    ASSERT_TRUE(m_connection->execute("UPDATE run_checksum SET form = 4 WHERE part = 'log'"));
    EXPECT_THAT(damage(), ::testing::Contains(HasSubstr("execution log"))) << "a form that is not known";
}

TEST_F(RunChecksums, AreLookedAtWhenARunIsOpenedAndGoWithIt) {
    ASSERT_TRUE(
        m_connection->execute(fmt::format("UPDATE run_field SET mean = 7 WHERE run = {}", m_sample.salesRuns[1])));
    EXPECT_EQ(*describeDamage(*m_connection, m_sample.salesRuns[0]), "");
    EXPECT_THAT(*describeDamage(*m_connection, m_sample.salesRuns[1]), HasSubstr("is damaged (metrics of fields)"));
    ASSERT_TRUE(m_connection->execute("DELETE FROM run_checksum"));
    EXPECT_EQ(*describeDamage(*m_connection, m_sample.salesRuns[1]), "") << "a run of an older version has none";
    int unknown = 0;
    ASSERT_TRUE(checkRepository(
        *m_connection, [&](const CheckFinding& finding) { unknown += finding.state == Soundness::Unknown ? 1 : 0; }));
    EXPECT_EQ(unknown, 5 + (6 + 7 + 7 + 1 + 1));
}

} // namespace
} // namespace tavix::repository
