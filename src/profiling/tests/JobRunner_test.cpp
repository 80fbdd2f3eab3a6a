#include "profiling/JobRunner.h"
#include "profiling/tests/StoredRuns.h"
#include "sql/Connection.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace tavix::profiling {
namespace {

class RunJob : public testing::StoredRuns {
  protected:
    job::JobDescription job(std::vector<std::string> files) { return *job::describeFiles(files, "Job"); }
};

class FixedClock final : public Clock {
  public:
    [[nodiscard]] UtcTime now() const override { return UtcTime(std::chrono::milliseconds(1'700'000'000'000)); }
};

/// Cancels at its nth call.
class Canceller final : public ProgressWatcher {
  public:
    explicit Canceller(int calls) : m_left(calls) {}
    bool progress(const ProgressState& state) override {
        last = state;
        return --m_left > 0;
    }
    ProgressState last;

  private:
    int m_left;
};

TEST_F(RunJob, StoresTablesFieldsDamageAndCollections) {
    job::JobDescription description = job({write("a.csv", "id,x\n1,y\n2\n3,z,!\n"), write("b.csv", "ref\n1\n1\n")});
    description.collections = {{"Keys", "", {{"a", "id"}, {"b", "ref"}}}};
    const FixedClock clock;
    const auto run = runJob(description, m_repository, {"first", nullptr, &clock});
    ASSERT_TRUE(run.ok()) << run.error().text;
    ASSERT_EQ(run->tables.size(), 2U);
    EXPECT_FALSE(run->cancelled);
    EXPECT_EQ(run->tables[0].rows, 3);
    EXPECT_EQ(run->tables[0].damagedRows, 2);
    EXPECT_EQ(run->tables[0].damage[1].line, 4);
    EXPECT_EQ(stored("SELECT job, description, started, tables, records FROM v_runs"),
              "Job|first|2023-11-14T22:13:20.000Z|2|5\n");
    EXPECT_EQ(stored("SELECT table_name, total_records, damaged_records, data_source FROM v_tables ORDER BY table_id"),
              "a|3|2|" + m_folder.path().string() + "\nb|2|0|" + m_folder.path().string() + "\n");
    EXPECT_EQ(stored("SELECT table_name, field_name, type_code, count, null_count, unique_count, minimum_value, "
                     "maximum_value, median FROM v_fields ORDER BY field_id"),
              "a|id|I|3|0|3|1|3|2\na|x|S|3|1|2|y|z|y\nb|ref|I|2|0|1|1|1|1\n");
    EXPECT_EQ(stored("SELECT text FROM v_log WHERE level = 1"),
              "Line 3: 1 cell instead of 2; the missing ones are null.\n"
              "Line 4: 3 cells instead of 2; the extra ones are cut.\n"
              "Damaged rows: 2 of 3.\n");
    EXPECT_EQ(stored("SELECT collection, count(*) FROM v_collections GROUP BY collection"), "Keys|2\n");

    ASSERT_TRUE(runJob(description, m_repository).ok());
    EXPECT_EQ(stored("SELECT count(*), count(DISTINCT job) FROM v_runs"), "2|1\n");
}

TEST_F(RunJob, StoresHowTheFieldsAreRead) {
    std::string rows = "n,d,open,made\nunknown,tbd,01/02/2003,5\n";
    for (int i = 1; i <= 19; ++i)
        rows +=
            std::to_string(i) + ",Jan " + std::to_string(i) + " 2001,03/04/2005," + std::to_string(86'400 * i) + "\n";
    job::JobDescription description = job({write("a.csv", rows)});
    ASSERT_TRUE(runJob(description, m_repository).ok());
    const std::string fields = "SELECT field_name, type_code, minimum_value, maximum_value, mean, median FROM v_fields "
                               "WHERE run = (SELECT max(id) FROM run) ORDER BY field_id";
    const std::string readings = "SELECT reading, fit_values, fit_rows, row_count, ambiguity, has_figures FROM "
                                 "type_breakdown WHERE run = (SELECT max(id) FROM run) ORDER BY field";
    EXPECT_EQ(stored(fields), "n|S|1|19|10.0|10\nd|S|Jan 1 2001|Jan 19 2001|NULL|Jan 10 2001\n"
                              "open|S|01/02/2003|03/04/2005|NULL|03/04/2005\n"
                              "made|I|5|1641600|820800.25|820800\n");
    EXPECT_EQ(stored(readings), "integer|19|19|20||1\ndate|19|19|20||1\ndate|0|0|20|day-first or month-first|0\n"
                                "integer|20|20|20||0\n");
    description.tables[0].fitsAtLeast = 96;
    description.tables[0].fieldDates = {{"open", forms::StatedDates::DayFirst},
                                        {"made", forms::StatedDates::EpochSeconds}};
    ASSERT_TRUE(runJob(description, m_repository).ok());
    EXPECT_EQ(stored(fields), "n|S|1|unknown|NULL|18\nd|S|Jan 1 2001|tbd|NULL|Jan 18 2001\n"
                              "open|S|01/02/2003|03/04/2005|NULL|03/04/2005\n"
                              "made|I|5|1641600|NULL|777600\n");
    EXPECT_EQ(stored(readings), "integer|19|19|20||0\ndate|19|19|20||0\ndate day-first|2|20|20||1\n"
                                "date epoch-seconds|20|20|20||1\n");
    description.tables[0].fieldDates = {{"opened", forms::StatedDates::DayFirst, "job.yaml:5:12: "}};
    const auto run = runJob(description, m_repository);
    ASSERT_FALSE(run.ok());
    EXPECT_EQ(run.error().text,
              "job.yaml:5:12: The dates of the table \"a\": there is no field \"opened\" (did you mean "
              "\"open\"?).");
}

TEST_F(RunJob, WhatIsWrongIsFoundBeforeAnythingIsWritten) {
    const std::string a = write("a.csv", "id,name\n1,x\n");
    const auto error = [&](const job::JobDescription& description) {
        const auto run = runJob(description, m_repository);
        return run ? std::string("none") : run.error().text;
    };
    EXPECT_THAT(error(job({a, m_folder.file("none.csv")})),
                ::testing::AllOf(::testing::StartsWith("Table \"none\": "), ::testing::HasSubstr("No such file")));
    EXPECT_THAT(error(job({write("empty.csv", "")})), ::testing::EndsWith("is empty"));
    job::JobDescription unknown = job({a});
    unknown.collections = {{"C", "", {{"a", "nmae"}}}};
    EXPECT_EQ(error(unknown), "Collection \"C\": the table \"a\" has no field \"nmae\" (did you mean \"name\"?).");
    unknown.collections = {{"C", "", {{"b", "id"}}}};
    EXPECT_EQ(error(unknown), "Collection \"C\": the job has no table \"b\" (did you mean \"a\"?).");
    EXPECT_EQ(error({}), "The job has no name.");
    job::JobDescription nothing;
    nothing.name = "N";
    EXPECT_EQ(error(nothing), "The job \"N\" has no tables.");
    EXPECT_FALSE(std::filesystem::exists(m_repository));
}

TEST_F(RunJob, ACancelledRunLeavesNothing) {
    const job::JobDescription description = job({write("a.csv", "id\n1\n2\n")});
    ASSERT_TRUE(runJob(description, m_repository).ok());
    for (int calls = 1; calls <= 3; ++calls) {
        Canceller watcher(calls);
        const auto run = runJob(description, m_repository, {"", &watcher, nullptr});
        ASSERT_TRUE(run.ok()) << run.error().text;
        EXPECT_TRUE(run->cancelled) << calls;
        EXPECT_EQ(run->runId, -1);
        EXPECT_EQ(watcher.last.bytesTotal, 7);
        EXPECT_EQ(stored("SELECT count(*) FROM v_runs"), "1\n");
    }
}

/// Another program that writes to the repository while tables are read.
class Neighbour final : public ProgressWatcher {
  public:
    explicit Neighbour(std::string path) : m_path(std::move(path)) {}
    bool progress(const ProgressState& state) override {
        if (state.phase != ProgressState::Phase::Reading)
            return true;
        auto connection = sql::Connection::openFile(m_path, sql::OpenMode::Write, std::chrono::milliseconds(0));
        auto transaction = sql::Transaction::begin(**connection);
        written += transaction && transaction->commit() ? 1 : 0;
        return true;
    }
    int written = 0;

  private:
    std::string m_path;
};

// It is opened while the reading begins, and a table may be long: here it has no end.
TEST_F(RunJob, ARepositoryThatCannotBeOpenedEndsTheReading) {
    write("r.tavix", "no repository");
    const std::string pipe = m_folder.file("endless.csv");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::signal(SIGPIPE, SIG_IGN);
    std::thread endless([&] {
        std::ofstream out(pipe);
        const std::string rows(4096, '\n');
        for (out << "id\n"; out; out << rows)
            ;
    });
    const auto run = runJob(job({pipe}), m_repository);
    endless.join();
    ASSERT_FALSE(run.ok());
    EXPECT_THAT(run.error().text, ::testing::HasSubstr("r.tavix"));
}

TEST_F(RunJob, OthersWriteWhileTablesAreRead) {
    const job::JobDescription description = job({write("a.csv", "id\n1\n"), write("b.csv", "id\n1\n")});
    ASSERT_TRUE(runJob(description, m_repository).ok());
    Neighbour neighbour(m_repository);
    const auto run = runJob(description, m_repository, {"", &neighbour, nullptr});
    ASSERT_TRUE(run.ok()) << run.error().text;
    EXPECT_EQ(neighbour.written, 3) << "before the first table, and at the beginning of both";
    EXPECT_EQ(stored("SELECT count(*) FROM v_runs"), "2\n");
}

/// Another program that is writing, and ends when a run waits for it; or else the run is cancelled then.
class LongWriter final : public ProgressWatcher {
  public:
    LongWriter(const std::string& path, bool ends) : m_ends(ends) {
        m_connection = sql::Connection::openFile(path, sql::OpenMode::Write).value();
        m_transaction.emplace(sql::Transaction::begin(*m_connection).value());
    }
    bool progress(const ProgressState& state) override {
        if (state.phase != ProgressState::Phase::Waiting)
            return true;
        ++waited;
        if (m_ends)
            m_transaction.reset();
        return m_ends;
    }
    int waited = 0;

  private:
    bool m_ends;
    std::unique_ptr<sql::Connection> m_connection;
    std::optional<sql::Transaction> m_transaction;
};

TEST_F(RunJob, WaitsForAnotherWriterUntilItIsCancelled) {
    const job::JobDescription description = job({write("a.csv", "id\n1\n")});
    ASSERT_TRUE(runJob(description, m_repository).ok());
    {
        LongWriter writer(m_repository, false);
        const auto run = runJob(description, m_repository, {"", &writer, nullptr});
        ASSERT_TRUE(run.ok()) << run.error().text;
        EXPECT_TRUE(run->cancelled);
        EXPECT_EQ(writer.waited, 1);
    }
    LongWriter writer(m_repository, true);
    const auto run = runJob(description, m_repository, {"", &writer, nullptr});
    ASSERT_TRUE(run.ok()) << run.error().text;
    EXPECT_FALSE(run->cancelled);
    EXPECT_EQ(writer.waited, 1);
    EXPECT_EQ(stored("SELECT count(*) FROM v_runs"), "2\n");
}

TEST_F(RunJob, ManyTablesInLittleMemoryAreStoredWhole) {
    std::vector<std::string> files;
    std::string rows = "id,text\n";
    for (int i = 0; i < 3000; ++i)
        rows += std::to_string(i) + ",text " + std::to_string(i % 700) + "\n";
    for (int i = 0; i < 12; ++i)
        files.push_back(write("t" + std::to_string(i) + ".csv", rows));
    RunOptions options;
    options.memory = 1;
    options.threads = 3;
    ASSERT_TRUE(runJob(job(files), m_repository, options).ok());
    EXPECT_EQ(stored("SELECT count(*), min(unique_count), max(unique_count), sum(value_sum) FROM v_fields"),
              "24|700|3000|72000\n");
    EXPECT_EQ(stored("SELECT sum(rows), count(DISTINCT first_row) FROM distribution_block WHERE kind = 'V'"),
              "44400|1\n");
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.path()))
        EXPECT_TRUE(entry.path().extension() == ".csv" || entry.path() == m_repository) << entry.path();
}

TEST_F(RunJob, StoresTheSameByAnyNumberOfThreads) {
    std::string rows = "id,name,ten\n";
    for (int i = 0; i < 20'000; ++i)
        rows += std::to_string(i) + ",name " + std::to_string(i % 6000) + "," + std::to_string(i % 10) + "\n";
    job::JobDescription description = job({write("a.csv", "x\n1\n2\n"), write("b.csv", rows)});
    job::TableDescription& filtered = description.tables.emplace_back();
    filtered.name = "few";
    filtered.basedOn = "b";
    filtered.where.text = "`ten` < 3";
    std::vector<std::string> found;
    for (const unsigned threads : {1U, 2U, 5U}) {
        m_repository = m_folder.file(std::to_string(threads) + ".tavix");
        const FixedClock clock;
        RunOptions options;
        options.clock = &clock;
        options.threads = threads;
        options.offsetIndexFrom = 0;
        const auto run = runJob(description, m_repository, options);
        ASSERT_TRUE(run.ok()) << run.error().text;
        found.push_back(stored("SELECT * FROM v_tables ORDER BY table_id") + stored("SELECT * FROM v_fields") +
                        stored("SELECT field, kind, block, first_row, rows, sum, hex(payload) FROM distribution_block "
                               "ORDER BY 1, 2, 3") +
                        stored("SELECT field, chunk, hex(hashes) FROM value_hash ORDER BY 1, 2") +
                        stored("SELECT * FROM v_percentiles") + stored("SELECT count(*) FROM value_place"));
    }
    EXPECT_EQ(stored("SELECT source_table, object_name, processed_records FROM v_tables ORDER BY table_id"),
              "a||2\nb||20000\nb|few|6000\n");
    EXPECT_EQ(found[1], found[0]);
    EXPECT_EQ(found[2], found[0]);
}

TEST_F(RunJob, AFileWithoutRowsIsATable) {
    ASSERT_TRUE(runJob(job({write("a.csv", "id,x\n")}), m_repository).ok());
    EXPECT_EQ(stored("SELECT field_name, count, minimum_value IS NULL, unique_percent IS NULL FROM v_fields"),
              "id|0|1|1\nx|0|1|1\n");
}

} // namespace
} // namespace tavix::profiling
