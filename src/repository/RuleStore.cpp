#include "repository/RuleStore.h"

#include "repository/BindValue.h"
#include "repository/Identities.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace tavix::repository {

namespace {

using nlohmann::json;

std::string listText(const json& list) {
    return list.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string listOf(const std::vector<std::string>& texts) {
    return listText(json(texts));
}

std::string listOf(const std::vector<KvbString>& texts) {
    json list = json::array();
    for (const KvbString& text : texts)
        list.push_back(text.isNull() ? json(nullptr) : json(text.str()));
    return listText(list);
}

/// The id of the table's metric or rule of this name, which is created if necessary; `kind` is the name of its table.
Result<int> identity(sql::Connection& connection, std::string_view kind, int table, const std::string& name) {
    auto insert = connection.prepare(fmt::format("INSERT OR IGNORE INTO {}(table_id, name) VALUES(?1, ?2)", kind));
    if (!insert)
        return insert.error();
    if (auto done = insert->bind(1, table).bind(2, name).run(); !done)
        return done.error();
    auto find = connection.prepare(fmt::format("SELECT id FROM {} WHERE table_id = ?1 AND name = ?2", kind));
    if (!find)
        return find.error();
    if (find->bind(1, table).bind(2, name).step() != sql::Step::Row)
        return Error{connection.errorText()};
    return static_cast<int>(find->integer(0));
}

Result<int> inputField(sql::Connection& connection, const PlaceInRun& place, const std::string& name) {
    return fieldOfRun(connection, place.run, place.table, name, {fmt::format("The table has no field \"{}\".", name)});
}

/// Prepares the insert of a metric's or rule's row in a run, with run, table, position and id bound as 1 to 4.
Result<sql::Statement> insertInRun(sql::Connection& connection, std::string_view sql, const PlaceInRun& place, int id) {
    auto insert = connection.prepare(sql);
    if (insert)
        insert->bind(1, place.run).bind(2, place.table).bind(3, place.position).bind(4, id);
    return insert;
}

Status storeRows(sql::Connection& connection, int run, int rule, const std::vector<RuleRow>& rows) {
    auto insert =
        connection.prepare("INSERT INTO rule_row(run, rule, position, record, row_values) VALUES(?1,?2,?3,?4,?5)");
    if (!insert)
        return insert.error();
    int position = 0;
    for (const RuleRow& row : rows) {
        insert->bind(1, run).bind(2, rule).bind(3, position++).bind(4, row.record);
        insert->bind(5, std::string_view(listOf(row.values)));
        if (auto done = insert->run(); !done)
            return done;
    }
    return {};
}

} // namespace

Status storeCustomMetric(sql::Connection& connection, const PlaceInRun& place, const CustomMetricFacts& facts) {
    auto metric = identity(connection, "custom_metric", place.table, facts.name);
    if (!metric)
        return metric.error();
    auto insert = insertInRun(
        connection,
        "INSERT INTO run_custom_metric(run, table_id, position, metric, output_name, kind, figure, expression, value, "
        "used_rows, error_rows) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10,?11)",
        place, *metric);
    if (!insert)
        return insert.error();
    insert->bind(5, facts.outputName);
    insert->bind(6, facts.isOverMetrics ? "metrics" : "rows").bind(7, facts.figure).bind(8, facts.expression);
    bindValue(*insert, 9, facts.value);
    if (facts.isOverMetrics)
        insert->bindNull(10);
    else
        insert->bind(10, facts.usedRows);
    if (auto done = insert->bind(11, facts.errorRows).run(); !done)
        return done;

    auto input = connection.prepare(
        "INSERT INTO custom_metric_input(run, metric, position, field, standard_metric) VALUES(?1,?2,?3,?4,?5)");
    if (!input)
        return input.error();
    int position = 0;
    for (const MetricInput& one : facts.inputs) {
        auto field = inputField(connection, place, one.field);
        if (!field)
            return field.error();
        input->bind(1, place.run).bind(2, *metric).bind(3, position++).bind(4, *field);
        if (one.metric)
            input->bind(5, static_cast<int>(*one.metric));
        else
            input->bindNull(5);
        if (auto done = input->run(); !done)
            return done;
    }
    return {};
}

Status storeBusinessRule(sql::Connection& connection, const PlaceInRun& place, const BusinessRuleFacts& facts) {
    auto rule = identity(connection, "business_rule", place.table, facts.name);
    if (!rule)
        return rule.error();
    auto insert = insertInRun(
        connection,
        "INSERT INTO run_rule(run, table_id, position, rule, condition, checked_rows, failed_rows, error_rows, "
        "logged_rows, log_columns, key_columns) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10,?11)",
        place, *rule);
    if (!insert)
        return insert.error();
    insert->bind(5, facts.condition).bind(6, facts.checkedRows).bind(7, facts.failedRows).bind(8, facts.errorRows);
    insert->bind(9, static_cast<std::int64_t>(facts.log.size())).bind(10, std::string_view(listOf(facts.logColumns)));
    if (auto done = insert->bind(11, static_cast<std::int64_t>(facts.keyColumns)).run(); !done)
        return done;

    auto input = connection.prepare("INSERT INTO rule_input(run, rule, position, field) VALUES(?1,?2,?3,?4)");
    if (!input)
        return input.error();
    int position = 0;
    for (const std::string& name : facts.inputs) {
        auto field = inputField(connection, place, name);
        if (!field)
            return field.error();
        if (auto done = input->bind(1, place.run).bind(2, *rule).bind(3, position++).bind(4, *field).run(); !done)
            return done;
    }
    return storeRows(connection, place.run, *rule, facts.log);
}

Result<std::vector<KvbString>> readTextList(std::string_view stored) {
    const json list = json::parse(stored, nullptr, false);
    const Error damaged{"The row log is damaged."};
    if (!list.is_array())
        return damaged;
    std::vector<KvbString> texts;
    for (const json& entry : list) {
        if (!entry.is_string() && !entry.is_null())
            return damaged;
        texts.push_back(entry.is_null() ? KvbString() : KvbString(entry.get<std::string>()));
    }
    return texts;
}

} // namespace tavix::repository
