#include "Program.h"
#include "base/tests/TempFolder.h"
#include "support/PostgresServer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fstream>

namespace tavix::testing {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(Databases, AreProfiledAndTheirRowsFoundAgain) {
    TempFolder folder;
    PostgresServer server;
    useOdbcFiles(folder, folder.file("unused.db"), server.port());
    server.execute(
        "CREATE TABLE \"x\"\"; drop table\"(id int PRIMARY KEY, name text, price numeric(10,2));"
        "INSERT INTO \"x\"\"; drop table\" SELECT i, CASE i % 5 WHEN 0 THEN NULL WHEN 1 THEN '' ELSE 'n' || i % 5 "
        "END, i / 4.0 FROM generate_series(1, 100) AS i");
    const std::string repository = folder.file("r.tavix");
    const std::string job = folder.file("job.yaml");
    std::ofstream(job) << "job: J\nsources: [{name: pg, odbc: pg}]\ntables:\n"
                          "  - {table: 'x\"; drop table', name: odd}\n"
                          "  - {name: query, query: 'SELECT * FROM \"x\"\"; drop table\"'}\n"
                          "  - {name: part, based on: query, where: \"`name` == 'n2'\"}\n";
    ::setenv("TAVIX_SOURCE_USER", PostgresServer::kUser, 1);
    ::setenv("TAVIX_SOURCE_PASSWORD", "wrong password", 1);
    const Outcome refused = runTavix({"profile", job, "-R", repository});
    EXPECT_EQ(refused.exitCode, 3);
    EXPECT_THAT(refused.err, AllOf(HasSubstr("password authentication failed"), Not(HasSubstr("wrong password"))));
    ::setenv("TAVIX_SOURCE_PASSWORD_PG", PostgresServer::kPassword, 1);

    const Outcome explained = runTavix({"profile", job, "-R", repository, "--explain", "--format", "csv"});
    EXPECT_EQ(explained.exitCode, 0) << explained.err;
    EXPECT_THAT(explained.out, AllOf(HasSubstr("GROUP BY v"), HasSubstr("\"\"x\"\"\"\"; drop table\"\""),
                                     HasSubstr("the filtered table")));
    const Outcome profiled = runTavix({"profile", job, "-R", repository});
    ASSERT_EQ(profiled.exitCode, 0) << profiled.err;
    EXPECT_THAT(profiled.out + profiled.err, Not(HasSubstr(PostgresServer::kPassword)));

    const auto rows = [&](const std::string& field, std::vector<std::string> which) {
        std::vector<std::string> arguments = {"rows", "-R", repository, field, "--format", "csv"};
        arguments.insert(arguments.end(), which.begin(), which.end());
        const Outcome found = runTavix(arguments);
        EXPECT_EQ(found.exitCode, 0) << found.err;
        EXPECT_EQ(found.err, "");
        return found.out;
    };
    const std::string head = "id,name,price\n";
    EXPECT_EQ(rows("odd.price", {"--value", "2.50"}), head + "10,,2.50\n");
    EXPECT_EQ(rows("odd.id", {"--value", "11"}), head + "11,\"\",2.75\n");
    EXPECT_EQ(rows("query.price", {"--pattern", "9.99"}).substr(0, 28), head + "1,\"\",0.25\n2,n2");
    const auto lines = [](const std::string& text) { return std::count(text.begin(), text.end(), '\n'); };
    EXPECT_EQ(lines(rows("odd.name", {"--null"})), 21);
    EXPECT_EQ(lines(rows("odd.name", {"--value", ""})), 21);
    EXPECT_EQ(lines(rows("part.name", {"--value", "n2"})), 21);
    const Outcome none = runTavix({"rows", "-R", repository, "part.name", "--value", "n3", "--format", "csv"});
    EXPECT_EQ(lines(none.out), 1);
    EXPECT_EQ(none.err, "tavix: the run has no value \"n3\" in part.name; the nearest is \"n2\"\n");

    const auto problem = [&](const std::string& sql) {
        server.execute(sql);
        return runTavix({"rows", "-R", repository, "odd.price", "--value", "2.50"});
    };
    const Outcome changed = problem("DELETE FROM \"x\"\"; drop table\" WHERE id = 10");
    EXPECT_THAT(changed.err, HasSubstr("1 in the run, 0 now: the source changed since"));
    const Outcome renamed = problem("ALTER TABLE \"x\"\"; drop table\" RENAME price TO cost");
    EXPECT_EQ(renamed.exitCode, 3);
    EXPECT_THAT(renamed.err, HasSubstr("no column \"price\" any more"));
    EXPECT_THAT(problem("DROP TABLE \"x\"\"; drop table\"").err, HasSubstr("there is no table"));
    server.kill();
    EXPECT_THAT(runTavix({"rows", "-R", repository, "odd.price", "--null"}).err, HasSubstr("Connection refused"));
}

TEST(Databases, CtrlCWhileTheServerLooksForRowsEndsWithFour) {
    TempFolder folder;
    PostgresServer server;
    useOdbcFiles(folder, folder.file("unused.db"), server.port());
    server.execute("CREATE TABLE small(id int); INSERT INTO small VALUES(1), (2);"
                   "CREATE VIEW slow AS SELECT id FROM small");
    const std::string repository = folder.file("r.tavix");
    const std::string job = folder.file("job.yaml");
    std::ofstream(job) << "job: J\nsources: [{name: pg, odbc: 'DSN=pg;UID=" << PostgresServer::kUser
                       << "'}]\ntables:\n  - {table: slow}\n";
    ::unsetenv("TAVIX_SOURCE_USER");
    ::setenv("TAVIX_SOURCE_PASSWORD", PostgresServer::kPassword, 1);
    const Outcome profiled = runTavix({"profile", job, "-R", repository});
    ASSERT_EQ(profiled.exitCode, 0) << profiled.err;
    // The job names the user.
    EXPECT_EQ(runTavix({"rows", "-R", repository, "slow.id", "--value", "2", "--format", "csv"}).out, "id\n2\n");
    server.execute("CREATE OR REPLACE VIEW slow AS SELECT id FROM small WHERE pg_sleep(300) IS NOT NULL");
    Program program(tavixCommand({"rows", "-R", repository, "slow.id", "--value", "2"}));
    server.execute("DO $$ BEGIN FOR i IN 1..600 LOOP PERFORM pg_stat_clear_snapshot(); EXIT WHEN EXISTS (SELECT FROM "
                   "pg_stat_activity WHERE wait_event = 'PgSleep' AND pid <> pg_backend_pid()); "
                   "PERFORM pg_sleep(0.05); END LOOP; END $$");
    program.send(SIGINT);
    const Outcome outcome = program.wait();
    EXPECT_EQ(outcome.exitCode, 4) << outcome.err;
}

TEST(Databases, APasswordInAJobFileIsRefused) {
    TempFolder folder;
    std::ofstream(folder.file("job.yaml"))
        << "job: J\nsources: [{name: pg, odbc: pg, password: hush}]\ntables: [{table: t}]\n";
    const Outcome refused = runTavix({"profile", folder.file("job.yaml"), "-R", folder.file("r.tavix")});
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_THAT(refused.err, AllOf(HasSubstr("TAVIX_SOURCE_PASSWORD_PG"), Not(HasSubstr("hush"))));
}

} // namespace
} // namespace tavix::testing
