#include "source/SqlDialect.h"

#include <gtest/gtest.h>

namespace tavix::source {
namespace {

DeclaredColumn columnOf(DeclaredColumn::Kind kind, std::string typeName) {
    DeclaredColumn column;
    column.name = "c";
    column.kind = kind;
    column.typeName = std::move(typeName);
    return column;
}

const DeclaredColumn kText = columnOf(DeclaredColumn::Kind::Text, "text");
const DeclaredColumn kCode = columnOf(DeclaredColumn::Kind::FixedText, "bpchar");

TEST(SqlDialect, AnUnknownEngineGetsPlainSqlOnly) {
    const SqlDialect& dialect = dialectOf("Some Engine 7");
    EXPECT_FALSE(dialect.writesText());
    EXPECT_EQ(dialect.textOf("c", kText), "c");
    EXPECT_EQ(dialect.indexCondition("c", kText, "a"), "");
    EXPECT_TRUE(dialect.canCompare(std::string_view("a\0b", 3)));
    EXPECT_FALSE(dialect.ignoresDeclaredLength);
    EXPECT_FALSE(dialect.hasLengthInTypeName);
    EXPECT_NE(dialect.whyInexact(kText), std::nullopt);
    EXPECT_EQ(dialectOf("ClickHouse").whyInexact(kText), std::nullopt);
    EXPECT_NE(dialectOf("ClickHouse").whyInexact(kCode), std::nullopt);
}

TEST(SqlDialect, AnEngineThatCastsIsNotADatabaseFile) {
    const SqlDialect& server = dialectOf("PostgreSQL");
    EXPECT_EQ(server.textOf("c", kText), "CAST(c AS text)");
    EXPECT_EQ(server.textOf("c", kCode), "CASE WHEN c IS NULL THEN NULL ELSE concat(c) END");
    EXPECT_EQ(server.indexCondition("c", kText, "a"), "c = ?");
    EXPECT_EQ(server.indexCondition("c", kCode, "a"), "");
    EXPECT_TRUE(server.canCompare("\xEF\xBF\xBD"));

    const SqlDialect& file = dialectOf("SQLite");
    EXPECT_TRUE(file.textOf("c", kText).starts_with("CASE typeof(c)"));
    EXPECT_EQ(file.indexCondition("c", kText, "7"), "c IN (?, 7)");
    EXPECT_FALSE(file.canCompare("\xEF\xBF\xBD"));

    // Only how the engine writes text decides, not how it keeps a snapshot.
    SqlDialect other = server;
    other.snapshot = SqlDialect::Snapshot::Transaction;
    EXPECT_EQ(other.textOf("c", kText), server.textOf("c", kText));
    EXPECT_EQ(other.indexCondition("c", kText, "a"), "c = ?");
    EXPECT_TRUE(other.canCompare("\xEF\xBF\xBD"));
}

} // namespace
} // namespace tavix::source
