#include "base/tests/TempFolder.h"
#include "repository/Schema.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace tavix::repository {
namespace {

using tavix::testing::TempFolder;
using ::testing::SizeIs;

using Rows = std::vector<std::string>;

/// The rows of a query, each as one text that distinguishes all values.
Rows rowsOf(sql::Connection& connection, const std::string& query) {
    Rows rows;
    auto select = connection.prepare(query);
    EXPECT_TRUE(select) << query << ": " << select.error().text;
    if (!select)
        return rows;
    sql::Step step = select->step();
    for (; step == sql::Step::Row; step = select->step()) {
        std::string row;
        for (int column = 0; column < select->columnCount(); ++column)
            row += select->isNull(column) ? "-|"
                                          : fmt::format("{}:{}|", select->text(column).size(), select->text(column));
        rows.push_back(row);
    }
    EXPECT_EQ(step, sql::Step::Done) << query << ": " << connection.errorText();
    return rows;
}

Rows texts(sql::Connection& connection, const std::string& query) {
    Rows found;
    auto select = connection.prepare(query);
    EXPECT_TRUE(select) << query;
    while (select->step() == sql::Step::Row)
        found.emplace_back(select->text(0));
    return found;
}

std::string joined(const Rows& names) {
    std::string all;
    for (const std::string& name : names)
        all += (all.empty() ? "" : ", ") + name;
    return all;
}

Rows tablesOf(sql::Connection& connection) {
    return texts(connection, "SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT LIKE 'sqlite_%'");
}

Rows columnsOf(sql::Connection& connection, const std::string& table) {
    return texts(connection, fmt::format("SELECT name FROM pragma_table_info('{}') ORDER BY cid", table));
}

/// A value for a column that its type and its checks allow; rows of the same number refer to each other.
std::string valueFor(const std::string& table, const std::string& column, const std::string& type, int number) {
    static const std::map<std::string, std::string> kGiven{
        {"profiled_table.kind", "'Y'"},      {"outlier.side", "'L'"},
        {"distribution_block.kind", "'V'"},  {"table_note.owner_kind", "'T'"},
        {"chart.category", "NULL"},          {"alert.type_code", "'SM'"},
        {"alert_property.name", "'JOB'"},    {"run_custom_metric.kind", "'rows'"},
        {"folder.parent", "NULL"},           {"histogram.kind", "'N'"},
        {"histogram.unit", "'N'"},           {"histogram.counts", "'[1]'"},
        {"type_breakdown.has_figures", "1"},
    };
    if (const auto given = kGiven.find(table + "." + column); given != kGiven.end())
        return given->second;
    if (type == "TEXT")
        return table == "alert_property" && column == "value" ? fmt::format("'{}'", number)
                                                              : fmt::format("'text {}'", number);
    if (type == "REAL")
        return fmt::format("{}.5", number);
    if (type == "BLOB")
        return fmt::format("x'0{}'", number);
    return fmt::format("{}", number);
}

/// Two rows in every table but the list of deleted runs.
void fill(sql::Connection& connection) {
    ASSERT_TRUE(connection.execute("PRAGMA foreign_keys = OFF"));
    for (const std::string& table : tablesOf(connection)) {
        if (table == "deleted_run")
            continue;
        const Rows columns = columnsOf(connection, table);
        const Rows types =
            texts(connection, fmt::format("SELECT type FROM pragma_table_info('{}') ORDER BY cid", table));
        for (int number = 1; number <= 2; ++number) {
            Rows values;
            for (std::size_t i = 0; i < columns.size(); ++i)
                values.push_back(valueFor(table, columns[i], types[i], number));
            ASSERT_TRUE(connection.execute(
                fmt::format("INSERT INTO {}({}) VALUES({})", table, joined(columns), joined(values))))
                << table << ": " << connection.errorText();
        }
    }
    ASSERT_TRUE(connection.execute("PRAGMA foreign_keys = ON"));
}

class OldVersions : public ::testing::TestWithParam<std::size_t> {};

TEST_P(OldVersions, KeepTheirRowsWhenTheyAreBroughtUpToDate) {
    TempFolder folder;
    const std::string path = folder.file("old.tavix");
    std::map<std::string, std::pair<Rows, Rows>> before; // by table: its columns and rows
    {
        auto old = sql::Connection::openFile(path, sql::OpenMode::Create);
        ASSERT_TRUE(old && prepareSchema(**old, sql::OpenMode::Create, schemaSteps().first(GetParam())));
        fill(**old);
        for (const std::string& table : tablesOf(**old)) {
            const Rows columns = columnsOf(**old, table);
            before[table] = {columns, rowsOf(**old, fmt::format("SELECT {} FROM {}", joined(columns), table))};
        }
    }
    auto connection = openRepository(path, sql::OpenMode::Write);
    ASSERT_TRUE(connection) << connection.error().text;
    EXPECT_EQ(*(*connection)->schemaVersion(), static_cast<std::int64_t>(schemaSteps().size()));
    for (const auto& [table, was] : before)
        EXPECT_EQ(rowsOf(**connection, fmt::format("SELECT {} FROM {}", joined(was.first), table)), was.second)
            << table;
    EXPECT_THAT(texts(**connection, "PRAGMA integrity_check"), ::testing::ElementsAre("ok"));
    EXPECT_THAT(texts(**connection, "PRAGMA foreign_key_check"), SizeIs(0));
    // The views over rows of the older version.
    for (const char* view :
         {"v_folders", "v_jobs", "v_runs", "v_tables", "v_files", "v_fields", "v_percentiles", "v_outliers", "v_log",
          "v_collections", "v_charts", "v_chart_properties", "v_key_analyses", "v_redundancies", "v_alerts"})
        EXPECT_THAT(rowsOf(**connection, fmt::format("SELECT * FROM {}", view)), SizeIs(2)) << view;
    EXPECT_THAT(rowsOf(**connection, "SELECT * FROM v_notes"), SizeIs(4));
    EXPECT_THAT(rowsOf(**connection, "SELECT * FROM v_histograms"), SizeIs(GetParam() >= 8 ? 2 : 0));
    for (const char* view : {"v_type_breakdowns", "v_type_forms", "v_findings"})
        EXPECT_THAT(rowsOf(**connection, fmt::format("SELECT * FROM {}", view)), SizeIs(GetParam() >= 9 ? 2 : 0))
            << view;
    for (const char* view : {"v_alert_mutes", "v_alert_changes", "v_alert_notes"})
        EXPECT_THAT(rowsOf(**connection, fmt::format("SELECT * FROM {}", view)), SizeIs(0)) << view;
    EXPECT_THAT(rowsOf(**connection, "SELECT alert_id, origin, job_id FROM v_alerts ORDER BY alert_id"),
                ::testing::ElementsAre("1:1|3:job|1:1|", "1:2|3:job|1:2|"));
    const std::size_t ofRules = GetParam() >= 2 ? 2 : 0;
    for (const char* view : {"v_custom_metrics", "v_business_rules", "v_rule_rows"})
        EXPECT_THAT(rowsOf(**connection, fmt::format("SELECT * FROM {}", view)), SizeIs(ofRules)) << view;
}

INSTANTIATE_TEST_SUITE_P(Versions, OldVersions, ::testing::Range(std::size_t{1}, schemaSteps().size()));

TEST(Views, HaveColumnsThatNeedNoQuotes) {
    TempFolder folder;
    auto connection = openRepository(folder.file("r.tavix"), sql::OpenMode::Create);
    ASSERT_TRUE(connection);
    const Rows views = texts(**connection, "SELECT name FROM sqlite_master WHERE type = 'view'");
    EXPECT_GE(views.size(), 20U);
    for (const std::string& view : views) {
        const Rows columns = columnsOf(**connection, view);
        EXPECT_TRUE((*connection)->prepare(fmt::format("SELECT {} FROM {}", joined(columns), view)))
            << (*connection)->errorText();
        for (const std::string& column : columns)
            EXPECT_TRUE(
                (*connection)->prepare(fmt::format("SELECT x.{0} AS {0} FROM {1} x ORDER BY {0}", column, view)))
                << view << "." << column;
        EXPECT_EQ(std::count(columns.begin(), columns.end(), "table_id"),
                  std::count(columns.begin(), columns.end(), "table_name"))
            << view;
    }
}

} // namespace
} // namespace tavix::repository
