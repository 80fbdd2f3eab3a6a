#include "repository/Charts.h"

#include "repository/Existence.h"

namespace tavix::repository {

namespace {

constexpr std::string_view kChart = "chart";

/// `insert` and `update` have the parameters chart, owner, name and description.
Result<int> putChart(sql::Connection& connection, std::string_view insert, std::string_view update, int chart,
                     int owner, std::string_view name, std::string_view description) {
    if (name.empty())
        return Error{"A chart needs a name."};
    auto statement = connection.prepare(chart == -1 ? insert : update);
    if (!statement)
        return statement.error();
    if (chart != -1)
        statement->bind(1, chart);
    statement->bind(2, owner).bind(3, name).bind(4, description);
    if (auto changed = changeRow(connection, *statement, chart, kChart); !changed)
        return changed.error();
    return chart == -1 ? static_cast<int>(connection.lastInsertId()) : chart;
}

Status requireChart(sql::Connection& connection, int chart) {
    return requireRow(connection, "SELECT 1 FROM chart WHERE id = ?1", chart, kChart);
}

} // namespace

Result<int> putTableChart(sql::Connection& connection, int chart, int table, std::string_view name,
                          std::string_view description) {
    if (auto exists = requireTable(connection, table); !exists)
        return exists.error();
    return putChart(connection, "INSERT INTO chart(table_id, name, description) VALUES(?2, ?3, ?4)",
                    "UPDATE chart SET table_id = ?2, category = NULL, name = ?3, description = ?4 WHERE id = ?1", chart,
                    table, name, description);
}

Result<int> putCategoryChart(sql::Connection& connection, int chart, int category, std::string_view name,
                             std::string_view description) {
    return putChart(connection, "INSERT INTO chart(category, name, description) VALUES(?2, ?3, ?4)",
                    "UPDATE chart SET table_id = NULL, category = ?2, name = ?3, description = ?4 WHERE id = ?1", chart,
                    category, name, description);
}

Status deleteChart(sql::Connection& connection, int chart) {
    auto statement = connection.prepare("DELETE FROM chart WHERE id = ?1");
    if (!statement)
        return statement.error();
    statement->bind(1, chart);
    return changeRow(connection, *statement, chart, kChart);
}

Status clearChartProperties(sql::Connection& connection, int chart) {
    if (auto exists = requireChart(connection, chart); !exists)
        return exists;
    auto statement = connection.prepare("DELETE FROM chart_property WHERE chart = ?1");
    if (!statement)
        return statement.error();
    return statement->bind(1, chart).run();
}

Status addChartProperty(sql::Connection& connection, int chart, std::string_view name, int position,
                        std::string_view value) {
    if (auto exists = requireChart(connection, chart); !exists)
        return exists;
    auto insert = connection.prepare("INSERT INTO chart_property(chart, name, position, value) VALUES(?1,?2,?3,?4)");
    if (!insert)
        return insert.error();
    return insert->bind(1, chart).bind(2, name).bind(3, position).bind(4, value).run();
}

} // namespace tavix::repository
