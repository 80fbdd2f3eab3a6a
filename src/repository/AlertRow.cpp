#include "repository/AlertRow.h"

#include "repository/BindValue.h"

#include <fmt/format.h>

#include <map>
#include <utility>

namespace tavix::repository {

namespace {

/// The first field that the table had in its latest run.
Result<int> firstField(sql::Connection& connection, int table) {
    auto find = connection.prepare("SELECT f.id FROM field f WHERE f.table_id = ?1 ORDER BY (SELECT MAX(run) FROM "
                                   "run_field WHERE field = f.id) DESC, (SELECT position FROM run_field WHERE field = "
                                   "f.id ORDER BY run DESC LIMIT 1) LIMIT 1");
    if (!find)
        return find.error();
    if (Status found = find->bind(1, table).stepToRow({"The table has no fields."}); !found)
        return found.error();
    return static_cast<int>(find->integer(0));
}

Status findStandardMetric(sql::Connection& connection, AlertRow& row) {
    const AlertDefinition& definition = row.definition;
    const MetricInfo* const metric =
        findMetric(static_cast<int>(row.isOfRecords() ? MetricId::Count : definition.metric));
    if (metric == nullptr || !metric->isFigure())
        return Error{"An alert watches a metric that is a number."};
    row.metric = metric->name;
    row.field = definition.field;
    if (row.isOfRecords()) {
        auto first = firstField(connection, definition.table);
        if (!first)
            return first.error();
        row.field = *first;
    }
    auto find = connection.prepare("SELECT name FROM field WHERE id = ?1 AND table_id = ?2");
    if (!find)
        return find.error();
    const Error missing{fmt::format("The table has no field with the number {}.", row.field)};
    if (Status found = find->bind(1, row.field).bind(2, definition.table).stepToRow(missing); !found)
        return found;
    row.input = find->text(0);
    return {};
}

Status findOther(sql::Connection& connection, AlertRow& row) {
    const bool isMetric = row.definition.subject == AlertSubject::CustomMetric;
    auto find = connection.prepare(
        isMetric ? "SELECT m.name, (SELECT v.output_name FROM run_custom_metric v WHERE v.metric = m.id ORDER BY v.run "
                   "DESC LIMIT 1) FROM custom_metric m WHERE m.id = ?1 AND m.table_id = ?2"
                 : "SELECT name, '' FROM business_rule WHERE id = ?1 AND table_id = ?2");
    if (!find)
        return find.error();
    const Error missing{fmt::format("The table has no {} with the number {}.", isMetric ? "custom metric" : "rule",
                                    row.definition.watched)};
    if (Status found = find->bind(1, row.definition.watched).bind(2, row.definition.table).stepToRow(missing); !found)
        return found;
    row.key = fmt::format("{}{}", isMetric ? 'M' : 'B', row.definition.watched);
    row.input = find->text(0);
    row.metric = find->text(1);
    return {};
}

Status storeProperties(sql::Connection& connection, int alert, const AlertProperties& properties) {
    auto remove = connection.prepare("DELETE FROM alert_property WHERE alert = ?1");
    auto insert = connection.prepare("INSERT INTO alert_property(alert, position, name, value) VALUES(?1,?2,?3,?4)");
    if (!remove || !insert)
        return Error{connection.errorText()};
    if (Status done = remove->bind(1, alert).run(); !done)
        return done;
    int position = 0;
    for (const auto& [name, value] : properties)
        if (Status done = insert->bind(1, alert).bind(2, position++).bind(3, name).bind(4, value).run(); !done)
            return done;
    return {};
}

void bindRow(sql::Statement& statement, const AlertRow& row, int position) {
    statement.bind(2, row.definition.table).bind(4, row.description()).bind(6, alertTypeCode(row.definition.subject));
    statement.bind(7, row.key).bind(8, row.isOfRecords() ? 1 : 0).bind(9, position);
    if (row.isStandard())
        statement.bind(3, row.field).bind(5, static_cast<int>(row.definition.metric));
    else
        statement.bindNull(3).bindNull(5);
}

std::string sentenceOf(const AlertRow& row, const AlertRule& rule) {
    return row.isOfRecords() ? recordsAlertSentence(rule)
                             : alertSentence(row.definition.subject, rule, row.metric, row.input);
}

} // namespace

std::string AlertRow::description() const {
    return definition.description.empty() ? sentenceOf(*this, definition.rule) : definition.description;
}

std::string AlertRow::condition(const AlertRule& rule) const {
    return fmt::format("{} ({})", sentenceOf(*this, rule), alertLevelWord(rule.level));
}

Result<AlertRow> makeRow(sql::Connection& connection, int job, const AlertDefinition& definition) {
    AlertRow row;
    row.definition = definition;
    if (Status found = row.isStandard() ? findStandardMetric(connection, row) : findOther(connection, row); !found)
        return found.error();
    if (row.isOfRecords())
        row.definition.metric = MetricId::Count;
    const std::string metricText =
        row.isStandard() ? std::to_string(static_cast<int>(row.definition.metric)) : row.metric;
    row.properties = alertProperties(row.definition, metricText, job);
    return row;
}

Result<std::vector<StoredAlert>> readAlerts(sql::Connection& connection, std::string_view where, int parameter) {
    auto select = connection.prepare(
        fmt::format("SELECT a.id, a.position, a.table_id, COALESCE(a.field, -1), COALESCE(a.metric, -1), a.type_code, "
                    "a.watched_key, a.of_records, a.description, COALESCE(a.job, -1) FROM alert a WHERE {} ORDER BY "
                    "a.position, a.id",
                    where));
    auto properties = connection.prepare(fmt::format(
        "SELECT p.alert, p.name, p.value FROM alert a JOIN alert_property p ON p.alert = a.id WHERE {}", where));
    if (!select || !properties)
        return Error{connection.errorText()};
    std::vector<StoredAlert> alerts;
    std::map<std::int64_t, std::size_t> places;
    select->bind(1, parameter);
    sql::Step step = select->step();
    for (; step == sql::Step::Row; step = select->step()) {
        StoredAlert alert;
        alert.id = static_cast<int>(select->integer(0));
        alert.position = static_cast<int>(select->integer(1));
        alert.definition.table = static_cast<int>(select->integer(2));
        alert.field = static_cast<int>(select->integer(3));
        alert.definition.metric = static_cast<MetricId>(select->integer(4));
        alert.definition.subject = alertSubjectOf(select->text(5));
        if (const std::string_view key = select->text(6); !key.empty())
            alert.definition.watched = KvbDatavar(std::string(key.substr(1))).toInt();
        alert.definition.field = select->integer(7) != 0 ? -1 : alert.field;
        alert.definition.description = select->text(8);
        alert.job = static_cast<int>(select->integer(9));
        places[alert.id] = alerts.size();
        alerts.push_back(std::move(alert));
    }
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    properties->bind(1, parameter);
    for (step = properties->step(); step == sql::Step::Row; step = properties->step())
        if (const auto place = places.find(properties->integer(0)); place != places.end())
            alerts[place->second].properties[std::string(properties->text(1))] = properties->text(2);
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    for (StoredAlert& alert : alerts)
        alert.definition.rule = readAlertRule(alert.definition.subject, alert.properties).value_or(AlertRule{});
    return alerts;
}

Result<int> insertAlert(sql::Connection& connection, const AlertRow& row, int position, const AlertOrigin& origin) {
    auto insert = connection.prepare(
        "INSERT INTO alert(job, table_id, field, description, metric, type_code, watched_key, of_records, position, "
        "origin, author, created) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10,?11,?12)");
    if (!insert)
        return insert.error();
    bindRow(*insert, row, position);
    insert->bind(1, origin.job);
    if (origin.user)
        insert->bind(10, "U").bind(11, *origin.user).bind(12, storedTime(origin.created));
    else
        insert->bind(10, "J").bind(11, "").bindNull(12);
    if (Status done = insert->run(); !done)
        return done.error();
    const int id = static_cast<int>(connection.lastInsertId());
    if (Status done = storeProperties(connection, id, row.properties); !done)
        return done.error();
    return id;
}

Status updateAlert(sql::Connection& connection, const StoredAlert& before, const AlertRow& row, int position) {
    AlertDefinition after = row.definition;
    after.description = row.description();
    if (before.definition == after && before.field == row.field && before.properties == row.properties &&
        before.position == position)
        return {};
    auto update = connection.prepare("UPDATE alert SET table_id = ?2, field = ?3, description = ?4, metric = ?5, "
                                     "type_code = ?6, watched_key = ?7, of_records = ?8, position = ?9 WHERE id = ?1");
    if (!update)
        return update.error();
    bindRow(*update, row, position);
    if (Status done = update->bind(1, before.id).run(); !done)
        return done;
    return before.properties == row.properties ? Status{} : storeProperties(connection, before.id, row.properties);
}

Status noteChange(sql::Connection& connection, int alert, std::string_view before, std::string_view after,
                  std::string_view author, UtcTime changed) {
    if (before == after)
        return {};
    auto insert = connection.prepare("INSERT INTO alert_change(alert, changed, author, condition_before, "
                                     "condition_after) VALUES(?1,?2,?3,?4,?5)");
    if (!insert)
        return insert.error();
    insert->bind(1, alert).bind(2, storedTime(changed)).bind(3, author).bind(4, before).bind(5, after);
    return insert->run();
}

Status removeAlert(sql::Connection& connection, int alert) {
    auto remove = connection.prepare("DELETE FROM alert WHERE id = ?1");
    return remove ? remove->bind(1, alert).run() : Status{remove.error()};
}

} // namespace tavix::repository
