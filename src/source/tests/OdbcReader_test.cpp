#include "source/OdbcCatalogue.h"
#include "source/tests/OdbcWorld.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <stdexcept>

namespace tavix::source {
namespace {

using tavix::testing::PostgresServer;
using tavix::testing::TempFolder;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr const char* kOddTable = "x\"; drop table";
/// A table on each engine with the same rows of every kind of trouble.
class Engines : public ::testing::TestWithParam<const char*> {
  protected:
    static void SetUpTestSuite() {
        const std::string table =
            R"(CREATE TABLE "x""; drop table" ("id" INTEGER PRIMARY KEY, "a ""b" VARCHAR(20) NOT NULL,
                                     "ünï" TEXT, n NUMERIC(10,2)))";
        const std::string rows = R"(INSERT INTO "x""; drop table" VALUES (1, 'Ab', 'ünï', 1.5), (2, 'aB', '', 3),
                                    (3, 'ab ', NULL, NULL), (4, 'ab', 'x', -2.25), (5, 'ab', 'x', 0))";
        const std::string longText = R"(UPDATE "x""; drop table" SET "ünï" = )";
        runSqlite(world().folder.file("t.db"),
                  table + ";" + rows + ";" + longText +
                      "(SELECT replace(printf('%.*c', 20000, 'z'), 'z', 'üz')) WHERE id = 4;"
                      "CREATE TABLE nocase(v TEXT COLLATE NOCASE, b BLOB);"
                      "INSERT INTO nocase VALUES('a', x'00ff'), ('A', 7), ('a', NULL), (CAST(x'61ff62' AS TEXT), 'y')");
        server().execute(table + ";" + rows + ";" + longText +
                         "repeat('üz', 20000) WHERE id = 4;"
                         "CREATE TABLE kinds(c char(5), r float8, d date, b bytea, o boolean, n numeric, j jsonb, i "
                         "interval);"
                         "INSERT INTO kinds VALUES('ab', -0.0, '0044-03-15 BC', '\\x00ff', true, 1.0, '{\"a\": 1}', "
                         "'1 day'), ('ab', 0, 'infinity', NULL, false, 1.00, '{\"a\": 1.0}', '24 hours');"
                         "CREATE COLLATION blind(provider = icu, locale = 'und-u-ks-level2', deterministic = false);"
                         "CREATE TABLE folded(v text COLLATE blind); INSERT INTO folded VALUES('a'), ('A'), ('a');"
                         "CREATE SCHEMA sales; CREATE TABLE sales.orders(id int); CREATE TABLE orders(id int)");
    }
    [[nodiscard]] static bool isPostgres() { return std::string_view(GetParam()) == "pg"; }
    void SetUp() override {
        auto opened = connect(GetParam(), isPostgres() ? PostgresServer::kPassword : "");
        ASSERT_TRUE(opened) << opened.error().text;
        m_connection = std::move(*opened);
    }
    DatabaseTable resolve(const TableRequest& request) {
        auto table = DatabaseTable::resolve(*m_connection, request);
        if (!table)
            throw std::runtime_error(table.error().text);
        return *table;
    }
    std::string problemOf(const TableRequest& request) {
        const auto table = DatabaseTable::resolve(*m_connection, request);
        return table ? "none" : table.error().text;
    }

    std::unique_ptr<OdbcConnection> m_connection;
};

std::string longText() {
    std::string text;
    for (int i = 0; i < 20'000; ++i)
        text += "üz";
    return text;
}

TEST_P(Engines, AnOddlyNamedTableIsDescribedAndReadWhole) {
    const DatabaseTable table = resolve({"", "", kOddTable, ""});
    EXPECT_THAT(table.columnNames(), ElementsAre("id", "a \"b", "ünï", "n"));
    EXPECT_TRUE(table.columns()[0].isKey);
    EXPECT_FALSE(table.columns()[1].isKey);
    EXPECT_EQ(table.columns()[1].isNullable, false);
    EXPECT_EQ(table.columns()[2].isNullable, true);
    EXPECT_EQ(table.columns()[1].length, 20);
    EXPECT_EQ(table.columns()[2].length, std::nullopt);
    EXPECT_EQ(table.columns()[3].length, 10);
    EXPECT_EQ(table.columns()[3].decimalPlaces, 2);
    const auto n = [](const char* lite, const char* pg) { return std::string(isPostgres() ? pg : lite); };
    const Rows expected = {{"1", "Ab", "ünï", n("1.5", "1.50")},
                           {"2", "aB", "", n("3", "3.00")},
                           {"3", "ab ", kNull, kNull},
                           {"4", "ab", longText(), "-2.25"},
                           {"5", "ab", "x", n("0", "0.00")}};
    EXPECT_TRUE(sorted(read(*m_connection, table, table.rows())) == expected);
    // The same through a driver that promises less: UTF-16, and long values by calls of their own.
    SqlDialect plain = m_connection->dialect();
    plain.isUtf8 = false;
    for (const bool readsBoundAgain : {true, false}) {
        DriverTraits traits = m_connection->traits();
        traits.readsBoundAgain = readsBoundAgain;
        m_connection->pretend(plain, traits);
        EXPECT_TRUE(sorted(read(*m_connection, table, table.rows())) == expected) << readsBoundAgain;
    }
}

TEST_P(Engines, AQueryIsReadLikeATable) {
    const DatabaseTable table = resolve(
        {"", "", "", "SELECT id AS a, n AS a, \"a \"\"b\" FROM \"x\"\"; drop table\" WHERE id < 3 -- two\n ; "});
    EXPECT_THAT(table.columnNames(), ElementsAre("a", "a (2)", "a \"b"));
    const std::string half = isPostgres() ? "1.50" : "1.5";
    EXPECT_EQ(read(*m_connection, table, table.rows())[0], (std::vector<std::string>{"1", half, "Ab"}));
    EXPECT_EQ(read(*m_connection, table, table.rows()).size(), 2U);
    EXPECT_EQ(read(*m_connection, table, table.matches(2, "aB", 10)).size(), 1U);
    EXPECT_THAT(problemOf({"", "", "", "SELEC 1"}), AllOf(HasSubstr("shop"), HasSubstr("syntax error")));
    EXPECT_NE(problemOf({"", "", "", "DELETE FROM \"x\"\"; drop table\""}), "none");
    EXPECT_NE(problemOf({"", "", "", "SELECT 1) ; DELETE FROM \"x\"\"; drop table\"; --"}), "none");
    EXPECT_EQ(read(*m_connection, resolve({"", "", kOddTable, ""}), resolve({"", "", kOddTable, ""}).rows()).size(),
              5U);
}

TEST_P(Engines, CountsAsTheRowsWouldBeCounted) {
    std::vector<TableRequest> tables = {{"", "", kOddTable, ""},
                                        {"", "", "", "SELECT n, id FROM \"x\"\"; drop table\""}};
    for (const char* name :
         isPostgres() ? std::vector<const char*>{"kinds", "folded"} : std::vector<const char*>{"nocase"})
        tables.push_back({"", "", name, ""});
    for (const TableRequest& request : tables) {
        const DatabaseTable table = resolve(request);
        ASSERT_FALSE(table.whyNotCounted());
        const Rows rows = read(*m_connection, table, table.rows());
        for (std::size_t c = 0; c < table.columns().size(); ++c) {
            std::map<std::string, int> expected;
            for (const auto& row : rows)
                ++expected[row.at(c)];
            std::vector<DeclaredColumn> columns(2);
            const std::vector<std::string> names(2);
            std::map<std::string, int> counted;
            for (const auto& row : drain(OdbcReader::open(*m_connection, table.counts(c), columns, names))) {
                ASSERT_EQ(row.size(), 2U) << row.at(0);
                counted[row[0]] += std::stoi(row[1]);
            }
            EXPECT_TRUE(counted == expected) << table.columnNames()[c];
        }
    }
}

TEST_P(Engines, FindsTheRowsOfAValueAsItWasCounted) {
    std::vector<TableRequest> tables = {{"", "", kOddTable, ""}};
    tables.push_back({"", "", isPostgres() ? "kinds" : "nocase", ""});
    for (const TableRequest& request : tables) {
        const DatabaseTable table = resolve(request);
        const Rows rows = read(*m_connection, table, table.rows());
        for (std::size_t c = 0; c < table.columns().size(); ++c)
            for (const auto& row : rows) {
                if (row[c].find("\uFFFD") != std::string::npos)
                    continue; // not a value of the engine
                Rows expected;
                for (const auto& other : rows)
                    if (other[c] == row[c])
                        expected.push_back(other);
                const auto value = row[c] == kNull ? std::nullopt : std::optional<std::string>(row[c]);
                EXPECT_TRUE(read(*m_connection, table, table.matches(c, value, 100)) == expected)
                    << row[c].substr(0, 20);
                EXPECT_EQ(read(*m_connection, table, table.matches(c, value, 1)).size(), 1U);
            }
        EXPECT_TRUE(read(*m_connection, table, table.matches(0, "' OR 1=1 --", 10)).empty());
        EXPECT_TRUE(read(*m_connection, table, table.matches(0, "99999999999999999999999", 10)).empty());
    }
}

TEST_P(Engines, SaysWhatIsNotThere) {
    EXPECT_THAT(problemOf({"", "", "x\"; drop tabel", ""}),
                AllOf(HasSubstr("there is no table"), HasSubstr(kOddTable)));
    EXPECT_THAT(problemOf({"", "", std::string("a\0b", 3), ""}), Not("none"));
    const DatabaseTable table = resolve({"", "", kOddTable, ""});
    SqlText vanished = table.rows();
    vanished.sql.replace(vanished.sql.rfind("drop"), 4, "DROP ");
    EXPECT_THAT(read(*m_connection, table, vanished).at(0).at(0), HasSubstr(isPostgres() ? "42P01" : "no such table"));
    EXPECT_THAT(read(*m_connection, table, {"SELECT 1"}).at(0).at(0), HasSubstr("has changed"));
}

TEST_P(Engines, LongResultsComeInBlocksAndCanBeCancelled) {
    const std::string many = isPostgres() ? "SELECT x FROM generate_series(1, 100000) AS x"
                                          : "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < "
                                            "100000) SELECT x FROM c";
    const DatabaseTable table = resolve({"", "", "", many});
    std::size_t blocks = 0;
    const Rows rows =
        drain(OdbcReader::open(*m_connection, table.rows(), table.columns(), table.columnNames()), &blocks);
    ASSERT_EQ(rows.size(), 100'000U);
    EXPECT_EQ(rows.back().at(0), "100000");
    EXPECT_GT(blocks, 5U);

    // It would take minutes; only a statement that is really interrupted ends soon.
    const std::string slow = isPostgres() ? "SELECT 1 FROM pg_sleep(300)"
                                          : "WITH RECURSIVE c(x) AS (SELECT 1 UNION ALL SELECT x + 1 FROM c WHERE x < "
                                            "20000000000) SELECT count(*) FROM c";
    const DatabaseTable endless = resolve({"", "", "", slow});
    int asked = 0;
    const auto cancelled = OdbcReader::open(*m_connection, endless.rows(), endless.columns(), endless.columnNames(),
                                            [&] { return ++asked < 3; });
    if (cancelled) { // a driver may wait for the first row only when it is fetched
        RowBlock block;
        const auto more = (*cancelled)->read(block);
        ASSERT_FALSE(more);
        EXPECT_EQ(more.error().text, kCancelled);
    } else {
        EXPECT_EQ(cancelled.error().text, kCancelled);
    }
    EXPECT_EQ(read(*m_connection, resolve({"", "", kOddTable, ""}), resolve({"", "", kOddTable, ""}).rows()).size(), 5U)
        << "the connection goes on";
}

TEST_P(Engines, ASnapshotDoesNotSeeWhatOthersWrite) {
    const DatabaseTable table = resolve({"", "", kOddTable, ""});
    m_connection->beginSnapshot();
    ASSERT_EQ(read(*m_connection, table, table.rows()).size(), 5U);
    if (isPostgres())
        server().execute(R"(INSERT INTO "x""; drop table" VALUES (6, '', '', 0))");
    else
        EXPECT_THROW(runSqlite(world().folder.file("t.db"), R"(INSERT INTO "x""; drop table" VALUES (6, '', '', 0))"),
                     std::runtime_error);
    EXPECT_EQ(read(*m_connection, table, table.rows()).size(), 5U);
    m_connection->endSnapshot();
    EXPECT_EQ(read(*m_connection, table, table.rows()).size(), isPostgres() ? 6U : 5U);
    if (isPostgres())
        server().execute(R"(DELETE FROM "x""; drop table" WHERE id = 6)");
}

INSTANTIATE_TEST_SUITE_P(, Engines, ::testing::Values("lite", "pg"),
                         [](const auto& parameter) { return std::string(parameter.param); });

TEST(OdbcConnection, TellsWhyItCannotConnectWithoutThePassword) {
    const std::string missing = world().folder.file("missing.db");
    const auto problem = [&](const std::string& text, const std::string& password = {}) {
        const auto opened = connect(text, password);
        return opened ? std::string("none") : opened.error().text;
    };
    EXPECT_THAT(problem("nosuch"),
                AllOf(HasSubstr("shop"), HasSubstr("Data source name not found"), HasSubstr("IM002")));
    EXPECT_THAT(problem("DSN=lite;Database=" + missing), HasSubstr("connect failed"));
    EXPECT_FALSE(std::filesystem::exists(missing)) << "reading makes no file";
    EXPECT_THAT(problem("Driver=nosuch.so"), HasSubstr("file not found"));
    EXPECT_THAT(problem("DSN=pg;Port=1"), HasSubstr("Connection refused"));
    EXPECT_THAT(problem("pg"), HasSubstr("no password supplied"));
    EXPECT_THAT(problem("DSN=pg;Database=nowhere", PostgresServer::kPassword), HasSubstr("does not exist"));
    const std::string wrong = problem("pg", "not the password");
    EXPECT_THAT(wrong, AllOf(HasSubstr("password authentication failed"), Not(HasSubstr("not the password"))));
    EXPECT_EQ(problem(server().connection(), PostgresServer::kPassword), "none");
}

TEST(OdbcConnection, AsksAgainAfterARefusalAndNotForEver) {
    world();
    std::vector<std::string> refusals;
    const auto open = [&](std::size_t rightAt) {
        refusals.clear();
        return OdbcConnection::open(
            "shop", *ConnectionText::parse("pg"), [&](const std::string& source, const std::string& refusal) {
                EXPECT_EQ(source, "shop");
                refusals.push_back(refusal);
                const bool isRight = refusals.size() == rightAt;
                return std::optional(Credentials{PostgresServer::kUser, isRight ? PostgresServer::kPassword : "wrong"});
            });
    };
    EXPECT_TRUE(open(3));
    EXPECT_EQ(refusals.size(), 3U);
    EXPECT_EQ(refusals[0], "");
    EXPECT_THAT(refusals[1], HasSubstr("password"));
    EXPECT_FALSE(open(100));
    EXPECT_LT(refusals.size(), 6U);
}

TEST(OdbcReader, ALostConnectionIsSaidAndEndsTheRows) {
    world();
    PostgresServer own;
    const auto connection = connect(own.connection(), PostgresServer::kPassword);
    ASSERT_TRUE(connection) << connection.error().text;
    const auto table = DatabaseTable::resolve(
        **connection, {"", "", "", "SELECT x, repeat('y', 100) FROM generate_series(1, 200000) AS x"});
    ASSERT_TRUE(table) << table.error().text;
    auto reader = OdbcReader::open(**connection, table->rows(), table->columns(), table->columnNames());
    ASSERT_TRUE(reader) << reader.error().text;
    RowBlock block;
    ASSERT_TRUE(*(*reader)->read(block));
    own.kill();
    Result<bool> more = true;
    while (more && *more)
        more = (*reader)->read(block);
    ASSERT_FALSE(more);
    EXPECT_THAT(more.error().text, AllOf(HasSubstr("shop"), HasSubstr("connection")));
    EXPECT_FALSE(*(*reader)->read(block));
}

TEST(OdbcReader, BytesThatAreNoUtf8AreRepairedAndCounted) {
    TempFolder folder;
    runSqlite(folder.file("t.db"), "CREATE TABLE t(v TEXT); INSERT INTO t VALUES('ok'), (CAST(x'61ff62' AS TEXT))");
    const auto connection = connect("Driver=libsqlite3odbc.so;Database=" + folder.file("t.db"));
    ASSERT_TRUE(connection) << connection.error().text;
    const auto table = DatabaseTable::resolve(**connection, {"", "", "t", ""});
    auto reader = OdbcReader::open(**connection, table->rows(), table->columns(), table->columnNames());
    RowBlock block;
    ASSERT_TRUE(reader && *(*reader)->read(block));
    EXPECT_EQ(std::string_view(block.columns[0][1].data, block.columns[0][1].size), "a\uFFFDb");
    ASSERT_EQ((*reader)->damagedRowCount(), 1);
    EXPECT_EQ((*reader)->damagedRows()[0].line, 2);
}

} // namespace
} // namespace tavix::source
