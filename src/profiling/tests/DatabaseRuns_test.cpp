#include "profiling/Databases.h"
#include "profiling/JobRunner.h"
#include "profiling/tests/StoredRuns.h"
#include "support/PostgresServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace tavix::profiling {
namespace {

using tavix::testing::PostgresServer;
using tavix::testing::TempFolder;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kRows[][4] = {{"1", "Anna", "12.50", "Berlin"}, {"2", "bert", "3.00", nullptr},
                                    {"3", "Bert", "-7.25", ""},       {"4", "Ünal", nullptr, "  "},
                                    {"5", "bert", "3.00", "Berlin"},  {"6", "a,\"b", "0.10", "x\ny"}};

/// The same rows as a text file and as a script for a database.
std::string asCsv() {
    std::string text = "id,name,price,city\n";
    for (const auto& row : kRows) {
        for (int c = 0; c < 4; ++c) {
            std::string cell = row[c] ? row[c] : "";
            for (std::size_t at = 0; (at = cell.find('"', at)) != std::string::npos; at += 2)
                cell.insert(at, 1, '"');
            text += (c == 0 ? "" : ",") + (row[c] ? "\"" + cell + "\"" : std::string());
        }
        text += "\n";
    }
    return text;
}

std::string asScript(const std::string& priceType) {
    std::string text = "CREATE TABLE customers(id INTEGER PRIMARY KEY, name VARCHAR(30) NOT NULL, price " + priceType +
                       ", city TEXT);";
    for (const auto& row : kRows) {
        text += "INSERT INTO customers VALUES(";
        for (int c = 0; c < 4; ++c)
            text += (c == 0 ? "" : ", ") + (row[c] ? "'" + std::string(row[c]) + "'" : std::string("NULL"));
        text += ");";
    }
    return text;
}

/// Shared by all tests of the program: the driver manager reads its files once.
struct World {
    World() {
        useOdbcFiles(folder, folder.file("t.db"), server.port());
        sqlite3* database = nullptr;
        sqlite3_open(folder.file("t.db").c_str(), &database);
        const int code = sqlite3_exec(database, asScript("TEXT").c_str(), nullptr, nullptr, nullptr);
        sqlite3_close(database);
        if (code != SQLITE_OK)
            throw std::runtime_error("no SQLite file");
        server.execute(asScript("NUMERIC(10,2)"));
        std::ofstream(folder.file("customers.csv"), std::ios::binary) << asCsv();
    }

    TempFolder folder;
    PostgresServer server;
};

World& world() {
    static World kWorld;
    return kWorld;
}

std::optional<source::Credentials> credentials(const std::string& source, const std::string& refusal) {
    if (source != "pg" || !refusal.empty())
        return std::nullopt;
    return source::Credentials{PostgresServer::kUser, PostgresServer::kPassword};
}

class DatabaseRuns : public tavix::testing::StoredRuns {
  protected:
    DatabaseRuns() { world(); }

    job::JobDescription job(const std::string& tables) {
        const std::string file = world().folder.file("job.yaml");
        std::ofstream(file) << "job: Job\nsources:\n  - {name: lite, odbc: lite}\n  - {name: pg, odbc: \"DSN=pg;"
                               "UID=nobody\"}\ntables:\n"
                            << tables;
        auto read = job::readJobFile(file);
        if (!read)
            throw std::runtime_error(read.error().text);
        return *read;
    }
    /// The error's text; empty when the run is stored.
    std::string run(const job::JobDescription& description, ProgressWatcher* watcher = nullptr) {
        RunOptions options;
        options.watcher = watcher;
        options.askCredentials = credentials;
        m_outcome = runJob(description, m_repository, options);
        return m_outcome ? std::string() : m_outcome.error().text;
    }
    std::string run(const std::string& tables) { return run(job(tables)); }
    /// Everything that a run found out about the fields of a table, and nothing of where it came from.
    std::string figures(const std::string& table) {
        const std::string of = " WHERE f.table_id = (SELECT table_id FROM v_tables WHERE coalesce(nullif(object_name, "
                               "''), table_name) = '" +
                               table + "')";
        return stored(
                   "SELECT field_name, type_code, count, unique_count, null_count, non_null_count, blank_count, "
                   "pattern_count, minimum_value, maximum_value, minimum_length, maximum_length, mean, median, mode, "
                   "standard_deviation, standard_error, ordinal, actual_type, unique_percent, percent_null, "
                   "quantile_rule, value_rows, value_sum, pattern_rows, pattern_sum FROM v_fields f" +
                   of + " ORDER BY ordinal") +
               stored("SELECT field_name, position, value FROM v_percentiles f" + of + " ORDER BY field_id, position") +
               stored("SELECT field_name, side, position, value, count, fence FROM v_outliers f" + of +
                      " ORDER BY field_id, side, position") +
               stored("SELECT f.name, d.kind, d.block, d.rows, d.sum, hex(d.payload) FROM distribution_block d JOIN "
                      "field f ON f.id = d.field" +
                      of + " ORDER BY f.id, d.kind, d.block");
    }

    Result<RunOutcome> m_outcome = Error{"no run"};
};

TEST_F(DatabaseRuns, HaveTheFiguresOfATextFileWithTheSameRowsHoweverTheyAreCounted) {
    ASSERT_EQ(run("  - {file: customers.csv, name: file}\n"
                  "  - {source: lite, table: customers, name: lite counted}\n"
                  "  - {source: lite, table: customers, name: lite rows, counted by: rows}\n"
                  "  - {source: lite, name: lite query, query: SELECT * FROM customers}\n"
                  "  - {source: pg, table: customers}\n"
                  "  - {source: pg, table: customers, name: pg rows, counted by: rows}\n"
                  "  - {source: pg, name: pg query, query: \"SELECT * FROM customers ORDER BY id;\"}\n"),
              "");
    const std::string expected = figures("file");
    EXPECT_THAT(expected, HasSubstr("city|S|6|4|1|5|1|"));
    for (const char* table : {"lite counted", "lite rows", "lite query", "customers", "pg rows", "pg query"})
        EXPECT_EQ(figures(table), expected) << table;
    EXPECT_EQ(
        stored("SELECT v.data_source, v.catalog, v.schema, v.source_table, v.object_name, v.kind, v.query, "
               "t.connection, v.total_records, v.file_path FROM v_tables v JOIN run_table t USING (run, table_id) "
               "WHERE t.connection IS NOT NULL ORDER BY t.position"),
        "lite|||customers|lite counted|Y||DSN=lite|6|NULL\n"
        "lite|||customers|lite rows|Y||DSN=lite|6|NULL\n"
        "lite||||lite query|S|SELECT * FROM customers|DSN=lite|6|NULL\n"
        "pg|postgres|public|customers||Y||DSN=pg|6|NULL\n"
        "pg|postgres|public|customers|pg rows|Y||DSN=pg|6|NULL\n"
        "pg||||pg query|S|SELECT * FROM customers ORDER BY id|DSN=pg|6|NULL\n");
    EXPECT_EQ(stored("SELECT field_name, defined_type, defined_length, primary_key, nullable, decimal_precision FROM "
                     "v_fields WHERE data_source = 'pg' AND table_name = 'customers' ORDER BY ordinal"),
              "id|int4|10|Yes|No|NULL\nname|varchar|30|No|No|NULL\nprice|numeric|10|No|Yes|2\n"
              "city|text|NULL|No|Yes|NULL\n");
    EXPECT_EQ(stored("SELECT kind FROM data_source WHERE name = 'pg'"), "0\n");
}

TEST_F(DatabaseRuns, FiltersRulesAndMetricsLookAtTheRowsOfADatabase) {
    const std::string filter = "  - {name: part, based on: base, where: \"lower(`name`) == 'bert'\"}\n";
    for (const char* from : {"source: pg\n    table: customers", "source: lite\n    query: SELECT * FROM customers"}) {
        TempFolder folder;
        m_repository = folder.file("r.tavix");
        const std::string block = std::string("  - name: base\n    ") + from +
                                  "\n    key: [id]\n    custom metrics:\n"
                                  "      - {name: Sum, sum: tonumber(`price`)}\n    rules:\n"
                                  "      - {name: Known, condition: not isblank(`city`) and not isnull(`city`)}\n";
        ASSERT_EQ(run(block + filter), "");
        EXPECT_EQ(stored("SELECT value FROM v_custom_metrics"), "11.35\n");
        EXPECT_EQ(stored("SELECT checked_rows, failed_rows FROM v_business_rules"), "6|3\n");
        EXPECT_EQ(stored("SELECT object_name, kind, total_records, processed_records FROM v_tables WHERE filter <> ''"),
                  "part|D|6|3\n");
        EXPECT_EQ(stored("SELECT count(*) FROM run_table WHERE connection IS NOT NULL"), "2\n");
    }
}

TEST_F(DatabaseRuns, KeepNoPasswordAnywhere) {
    ASSERT_EQ(run("  - {source: pg, table: customers}\n"), "");
    std::ostringstream content;
    content << std::ifstream(m_repository, std::ios::binary).rdbuf();
    ASSERT_GT(content.str().size(), 1000U);
    EXPECT_THAT(content.str(), Not(HasSubstr(PostgresServer::kPassword)));
    EXPECT_THAT(content.str(), Not(HasSubstr(PostgresServer::kUser)));
    EXPECT_EQ(stored("SELECT connection_user FROM run_table"), "nobody\n") << "whom the job names";
    EXPECT_THAT(run("  - {source: pg, table: customer}\n"),
                AllOf(HasSubstr("there is no table \"customer\"; it has \"public.customers\""),
                      Not(HasSubstr(PostgresServer::kPassword))));
}

TEST_F(DatabaseRuns, WhatIsWrongIsSaidAndNothingIsStored) {
    const struct {
        const char* tables;
        const char* text;
    } kCases[] = {
        {"  - {source: lite, table: nothing}\n", "Table \"nothing\": Source \"lite\": there is no table \"nothing\""},
        {"  - {source: lite, table: customers, key: [no]}\n", "\"no\""},
        {"  - {source: pg, name: q, query: SELECT nowhere FROM customers}\n", "column \"nowhere\" does not exist"},
        {"  - {source: pg, name: q, query: DROP TABLE customers}\n", "DROP"},
        {"  - {source: pg, name: q, query: SELECT 1 / (id - id) FROM customers}\n", "division by zero"},
        {"  - {source: pg, table: customers, schema: nowhere}\n", "in the schema \"nowhere\""},
    };
    for (const auto& one : kCases) {
        EXPECT_THAT(run(std::string(one.tables)), HasSubstr(one.text));
        EXPECT_NE(stored("SELECT count(*) FROM run"), "1\n") << one.tables;
    }
    job::JobDescription wrong = job("  - {source: pg, table: customers}\n");
    RunOptions options;
    options.askCredentials = [](const std::string&, const std::string&) {
        return std::optional(source::Credentials{PostgresServer::kUser, "not the password"});
    };
    const auto refused = runJob(wrong, m_repository, options);
    ASSERT_FALSE(refused);
    EXPECT_THAT(refused.error().text,
                AllOf(HasSubstr("password authentication failed"), Not(HasSubstr("not the password"))));
}

/// Cancels once a table is being read.
class Canceller final : public ProgressWatcher {
  public:
    bool progress(const ProgressState& state) override { return state.table.empty() || ++m_calls < 3; }

  private:
    int m_calls = 0;
};

TEST_F(DatabaseRuns, AreCancelledWhileTheServerWorks) {
    // The first takes the server minutes before it gives a row; so does counting the second.
    for (const char* by : {"rows", "engine"}) {
        Canceller watcher;
        const job::JobDescription slow =
            job(std::string("  - {source: pg, counted by: ") + by +
                ", name: q, query: \"SELECT count(*) FROM generate_series(1, 3000000000)\"}\n");
        EXPECT_EQ(run(slow, &watcher), "");
        EXPECT_TRUE(m_outcome->cancelled);
        EXPECT_EQ(stored("SELECT count(*) FROM run"), "0\n");
    }
}

TEST_F(DatabaseRuns, AreExplainedWithoutARun) {
    const auto explained = explainJob(job("  - {file: customers.csv, name: file}\n"
                                          "  - {source: pg, table: customers}\n"
                                          "  - {source: pg, table: customers, name: base}\n"
                                          "  - {name: part, based on: base, where: \"`id` == 1\"}\n"
                                          "  - source: lite\n    table: customers\n    name: ruled\n"
                                          "    rules: [{name: r, condition: \"`id` != ''\"}]\n"),
                                      credentials);
    ASSERT_TRUE(explained) << explained.error().text;
    ASSERT_EQ(explained->size(), 5U);
    EXPECT_EQ((*explained)[0].reason, "a text file is read");
    EXPECT_EQ((*explained)[1].reason, "");
    ASSERT_EQ((*explained)[1].statements.size(), 4U);
    EXPECT_EQ((*explained)[1].statements[3],
              "SELECT v, COUNT(*) FROM (SELECT CAST(\"city\" AS text) COLLATE \"C\" AS v FROM "
              "\"public\".\"customers\") AS s GROUP BY v");
    EXPECT_EQ((*explained)[2].reason, "the filtered table \"part\" needs its rows");
    EXPECT_EQ((*explained)[2].statements.size(), 1U);
    EXPECT_THAT((*explained)[3].reason, HasSubstr("made of the rows of \"base\""));
    EXPECT_EQ((*explained)[4].reason, "its rules look at every row");
}

TEST(DatabaseJobs, AreCheckedBeforeAnythingIsConnected) {
    TempFolder folder;
    const auto problem = [&](const std::string& text) {
        std::ofstream(folder.file("j.yaml")) << text;
        const auto read = job::readJobFile(folder.file("j.yaml"));
        return read ? std::string("none") : read.error().text.substr(read.error().text.find("j.yaml") + 6);
    };
    const std::string head = "job: J\nsources: [{name: s, odbc: dsn}, {name: my shop, odbc: d2}]\ntables:\n";
    EXPECT_EQ(problem(head + "  - {source: s, table: t}\n"), "none");
    EXPECT_EQ(problem("job: J\nsources: [{name: s, odbc: dsn}]\ntables: [{table: t}]\n"), "none");
    const struct {
        const char* table;
        const char* text;
    } kCases[] = {
        {"{table: t}", "the key \"source\" is missing"},
        {"{source: shp, table: t}", "the job has no source \"shp\""},
        {"{source: s, query: SELECT 1}", "the key \"name\" is missing"},
        {"{source: s, name: n, query: SELECT 1, table: t}", "\"table\" does not go with a query"},
        {"{source: s, table: t, header: false}", "\"header\" belongs to a text file"},
        {"{source: s, table: t, sample: {every: 2}}", "\"sample\" belongs to a text file"},
        {"{source: s, table: t, where: x}", "\"where\" belongs to a filtered table"},
        {"{file: a.csv, schema: x}", "this is a text file"},
        {"{source: s, table: t, counted by: me}", "engine or rows"},
        {"{source: s, tabel: t}", "unknown key \"tabel\""},
    };
    for (const auto& one : kCases)
        EXPECT_THAT(problem(head + "  - " + one.table + "\n"), HasSubstr(one.text)) << one.table;
    EXPECT_THAT(problem("job: J\ntables: [{table: t}]\n"), HasSubstr("has no sources"));
    EXPECT_THAT(problem("job: J\nsources: [{name: s, odbc: a}, {name: s, odbc: b}]\ntables: [{source: s, table: t}]\n"),
                HasSubstr("already a source"));
    for (const char* secret : {"odbc: dsn, password: hush", "odbc: \"DSN=d;PWD=hush\"", "odbc: d, pwd: hush"}) {
        const std::string text =
            problem("job: J\nsources:\n  - {name: my shop, " + std::string(secret) + "}\ntables: [{table: t}]\n");
        EXPECT_THAT(text, AllOf(HasSubstr("TAVIX_SOURCE_PASSWORD_MY_SHOP"), Not(HasSubstr("hush"))));
        EXPECT_THAT(text, ::testing::StartsWith(":3:")) << "the place";
    }
    EXPECT_THAT(problem("job: J\nsources: [{name: s, odbc: \"a;b\"}]\ntables: [{table: t}]\n"), HasSubstr("neither"));
}

} // namespace
} // namespace tavix::profiling
