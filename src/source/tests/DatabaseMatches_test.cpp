#include "source/tests/OdbcWorld.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>

/// Finding the rows of a value that was read: all of them, of every type, and none without an error for others.
namespace tavix::source {
namespace {

using tavix::testing::PostgresServer;
using tavix::testing::TempFolder;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

/// Texts that none of the tables has; most of them are not values of most types.
const std::vector<std::string> kStrangers = {"nothing like it", "", "17", "{}", "2001-02-03"};

DatabaseTable resolved(const OdbcConnection& connection, const TableRequest& request) {
    auto table = DatabaseTable::resolve(connection, request);
    if (!table)
        throw std::runtime_error(table.error().text);
    return *table;
}

/// What matches() gives, and of it the rows that a reader keeps.
Rows found(const OdbcConnection& connection, const DatabaseTable& table, std::size_t column, const std::string& value) {
    Rows rows = read(connection, table, table.matches(column, value));
    std::erase_if(rows, [&](const auto& row) { return row.size() == table.columns().size() && row[column] != value; });
    return sorted(std::move(rows));
}

void expectEveryValueToBeFound(const OdbcConnection& connection, const TableRequest& request) {
    const DatabaseTable table = resolved(connection, request);
    const Rows rows = sorted(read(connection, table, table.rows()));
    ASSERT_GT(rows.size(), 1U);
    for (std::size_t c = 0; c < table.columns().size(); ++c) {
        std::map<std::string, Rows> byValue;
        for (const auto& row : rows) {
            ASSERT_EQ(row.size(), table.columns().size()) << row[0];
            if (row[c] != kNull)
                byValue[row[c]].push_back(row);
        }
        for (const auto& [value, expected] : byValue)
            EXPECT_EQ(found(connection, table, c, value), expected)
                << request.table << request.query << " " << table.columnNames()[c] << " = " << value;
        for (const std::string& stranger : kStrangers) {
            if (byValue.contains(stranger))
                continue;
            EXPECT_EQ(found(connection, table, c, stranger), Rows())
                << request.table << request.query << " " << table.columnNames()[c] << " = " << stranger;
        }
    }
}

std::string planOf(const std::string& file, const std::string& sql) {
    std::string plan;
    sqlite3* database = nullptr;
    sqlite3_open(file.c_str(), &database);
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(database, ("EXPLAIN QUERY PLAN " + sql).c_str(), -1, &statement, nullptr);
    while (sqlite3_step(statement) == SQLITE_ROW)
        plan += std::string(reinterpret_cast<const char*>(sqlite3_column_text(statement, 3))) + "\n";
    sqlite3_finalize(statement);
    sqlite3_close(database);
    return plan;
}

TEST(SqliteMatches, AreAllRowsOfAValueWhateverTypesItHasAndItsColumnDeclares) {
    world();
    for (const char* encoding : {"UTF-8", "UTF-16le", "UTF-16be"}) {
        TempFolder folder;
        const std::string file = folder.file("t.db");
        runSqlite(file, fmt::format("PRAGMA encoding = '{}';", encoding) + R"(
CREATE TABLE t(id INTEGER PRIMARY KEY, v VARCHAR(20), n, i INTEGER, r REAL, x BLOB, d NUMERIC, c TEXT COLLATE NOCASE,
               g GENERATED ALWAYS AS (i || ''), h INT GENERATED ALWAYS AS (i * 2));
INSERT INTO t VALUES
 (1, 'abc', 'abc', 5, 1.5, x'414243', '7', 'Abc'), (2, x'414243', 5, 'x', 2, x'', '1.5', 'abc'),
 (3, x'616263', '5', x'35', 1e20, 'text', 1e300 * 1e10, 'ABC'), (4, '414243', x'35', 5, -0.0, 3, 0, 'q'),
 (5, '', x'', '', 0.1, 0.1 + 0.2, '9223372036854775807', -9223372036854775808), (6, '1.0e+20', 1e20, 35, 1e-320, 1.5, -1e999, '1.5'),
 (7, 'a' || char(0) || 'bü😀', char(0), '+5', '1.50', char(0) || char(0), '007', char(1114111));
CREATE INDEX tv ON t(v); CREATE INDEX tn ON t(n);
CREATE VIEW computed AS SELECT id, i * 2 AS twice, v, r / 3 AS third FROM t;
CREATE VIEW mixed AS SELECT v FROM t UNION ALL SELECT i * 2 FROM t UNION ALL SELECT x FROM t;
CREATE TABLE counted AS SELECT count(*) AS c, sum(r) AS s, v FROM t GROUP BY v;
)");
        const auto connection = connect("Driver=libsqlite3odbc.so;Database=" + file);
        ASSERT_TRUE(connection) << connection.error().text;
        for (const char* table : {"t", "computed", "mixed", "counted"})
            expectEveryValueToBeFound(**connection, {"", "", table, ""});
        expectEveryValueToBeFound(**connection, {"", "", "", "SELECT v, i * 2, count(*), n FROM t GROUP BY 1, 2, 4"});
        const DatabaseTable table = resolved(**connection, {"", "", "t", ""});
        for (const char* value : {"abc", "5", "1.5", "4142"}) {
            EXPECT_THAT(planOf(file, table.matches(1, value).sql), AllOf(HasSubstr("tv"), Not(HasSubstr("SCAN"))));
            EXPECT_THAT(planOf(file, table.matches(2, value).sql), AllOf(HasSubstr("tn"), Not(HasSubstr("SCAN"))));
        }
        const Rows all = read(**connection, table, table.rows());
        EXPECT_EQ(all[6][1], std::string("a\0bü😀", 9)) << "a text goes on after a NUL, " << encoding;
        EXPECT_EQ(all[6][2], std::string(1, '\0'));
    }
}

TEST(SqliteMatches, BytesThatAreNotUtf8AreFoundAsTheyWereRead) {
    world();
    TempFolder folder;
    runSqlite(folder.file("t.db"), "CREATE TABLE t(v TEXT); INSERT INTO t VALUES('ok'), (CAST(x'61ff62' AS TEXT))");
    const auto connection = connect("Driver=libsqlite3odbc.so;Database=" + folder.file("t.db"));
    ASSERT_TRUE(connection) << connection.error().text;
    expectEveryValueToBeFound(**connection, {"", "", "t", ""});
}

class PostgresMatches : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        server().execute(R"(
CREATE SCHEMA zoo; SET search_path = zoo;
CREATE TYPE pair AS (a int, b text); CREATE TYPE mood AS ENUM ('sad', 'ok');
CREATE DOMAIN json_domain AS json; CREATE DOMAIN text_domain AS text;
CREATE TABLE kinds(txt text, vc varchar(5), bp char(4), nm name, j json, jb jsonb, x xml, p point, c pair, m mood,
  jd json_domain, td text_domain, i inet, ci cidr, mac macaddr, iv interval, mo money, bi bit(3), vb varbit, ts tsvector,
  tq tsquery, rg int4range, ar int[], ta text[], o oid, rc regclass, xx xid, ch "char", by bytea, u uuid, i2 int2, i4 int4,
  i8 int8, ser serial, bx box, ln line, ls lseg, pa path, po polygon, cir circle, lsn pg_lsn, num numeric, tim time,
  dat date, tstz timestamptz, timz timetz, b boolean, f4 float4, f8 float8, jp jsonpath, t2 timestamp);
INSERT INTO kinds VALUES('a', 'ab', 'ab', 'n', '{"a": 1}', '{"a": 1}', '<a/>', '(1,2)', (1, 'x'), 'ok', '[1, 2]', 'td',
  '10.0.0.1', '10.0.0.0/8', '08:00:2b:01:02:03', '1 day', 12.5, '101', '1', 'a b', 'a & b', '[1,5)', '{1,2}', '{a,b}', 7,
  'pg_class', '9', 'c', '\xff00', 'a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11', 1, 2, 3, 4, '(1,1),(0,0)', '{1,2,3}', '[(0,0),(1,1)]',
  '[(0,0),(1,1)]', '((0,0),(1,1))', '<(0,0),1>', '16/B374D848', 1.50, '10:00', '2020-01-02', '2020-01-02 10:00+00',
  '10:00+01', true, 0.1, 1e300, '$.a', 'infinity');
INSERT INTO kinds SELECT * FROM kinds;
INSERT INTO kinds(txt, vc, jb, f8) VALUES('', '', '{"a": 1.0}', '-0'), (E'tab\tquote''\\', 'ä', 'null', 'NaN');
)");
    }
    void SetUp() override {
        auto opened = connect("pg", PostgresServer::kPassword);
        ASSERT_TRUE(opened) << opened.error().text;
        m_connection = std::move(*opened);
    }

    std::unique_ptr<OdbcConnection> m_connection;
};

TEST_F(PostgresMatches, AreAllRowsOfAValueOfEveryType) {
    expectEveryValueToBeFound(*m_connection, {"", "zoo", "kinds", ""});
    expectEveryValueToBeFound(*m_connection, {"", "", "", "SELECT * FROM zoo.kinds"});
}

TEST_F(PostgresMatches, ThereAreNoneOnceTheTypeWasChanged) {
    const auto rowsOf = [&](const std::string& type, const std::string& now, const char* value) {
        server().execute(fmt::format("DROP TABLE IF EXISTS zoo.changed; CREATE TABLE zoo.changed(v {});"
                                     "INSERT INTO zoo.changed VALUES('{}')",
                                     type, now));
        return found(*m_connection, resolved(*m_connection, {"", "zoo", "changed", ""}), 0, value);
    };
    EXPECT_EQ(rowsOf("text", "abc", "abc").size(), 1U);
    EXPECT_EQ(rowsOf("integer", "12", "12").size(), 1U);
    EXPECT_EQ(rowsOf("integer", "12", "abc"), Rows());
    EXPECT_EQ(rowsOf("uuid", "a0eebc99-9c0b-4ef8-bb6d-6bb9bd380a11", "abc"), Rows());
    EXPECT_EQ(rowsOf("inet", "10.0.0.1", "abc"), Rows());
    EXPECT_EQ(rowsOf("json", "{}", "abc"), Rows());
    EXPECT_EQ(rowsOf("date", "2020-01-02", "abc"), Rows());
}

TEST_F(PostgresMatches, AQueryWithOperatorsThatTheDriverTakesForParametersIsToldAnotherWay) {
    const auto problem = [&](const char* query) {
        const auto table = DatabaseTable::resolve(*m_connection, {"", "", "", query});
        return table ? std::string("none") : table.error().text;
    };
    for (const char* query : {"SELECT jb FROM zoo.kinds WHERE jb ? 'a'", "SELECT jb ?| ARRAY['a'] FROM zoo.kinds"})
        EXPECT_THAT(problem(query), AllOf(HasSubstr("the query has a \"?\" outside of quotes"),
                                          HasSubstr("Write a ? b as jsonb_exists(a, b)")));
    EXPECT_EQ(problem("SELECT jb, 'what?' FROM zoo.kinds WHERE jsonb_exists(jb, 'a') -- ?"), "none");
}

TEST(OdbcConnection, ARefusalWithoutAUserSaysHowToNameOne) {
    const auto problem = [&](const std::string& text) {
        const auto opened = OdbcConnection::open("the shop", *ConnectionText::parse(text), {});
        return opened ? std::string("none") : opened.error().text;
    };
    EXPECT_THAT(problem(server().connection() + ";PWD=x"),
                AllOf(HasSubstr("TAVIX_SOURCE_USER_THE_SHOP"), HasSubstr("TAVIX_SOURCE_PASSWORD_THE_SHOP")));
    EXPECT_THAT(problem(server().connection() + ";UID=somebody;PWD=x"), Not(HasSubstr("TAVIX_SOURCE_USER")));
}

} // namespace
} // namespace tavix::source
