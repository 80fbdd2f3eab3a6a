#include "repository/AlertStore.h"

#include "base/NumberText.h"

#include <fmt/format.h>

#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix::repository {

namespace {

/// The subject of an alert on a custom metric or a rule.
struct Watched {
    std::string key;
    std::string metric; ///< name of the metric's value
};

Result<Watched> findWatched(sql::Connection& connection, const StoredAlert& alert) {
    const bool isMetric = alert.facts->subject == AlertSubject::CustomMetric;
    auto find = connection.prepare(
        isMetric ? "SELECT m.id, v.output_name FROM custom_metric m JOIN run_custom_metric v ON v.metric = m.id "
                   "WHERE m.table_id = ?1 AND m.name = ?2 ORDER BY v.run DESC LIMIT 1"
                 : "SELECT id, '' FROM business_rule WHERE table_id = ?1 AND name = ?2");
    if (!find)
        return find.error();
    const Error missing{
        fmt::format("There is no {} \"{}\".", isMetric ? "custom metric" : "rule", alert.facts->watched)};
    if (Status found = find->bind(1, alert.table).bind(2, alert.facts->watched).stepToRow(missing); !found)
        return found.error();
    return Watched{fmt::format("{}{}", isMetric ? 'M' : 'B', find->integer(0)), std::string(find->text(1))};
}

Status storeAlert(sql::Connection& connection, int job, const StoredAlert& alert) {
    const AlertFacts& facts = *alert.facts;
    const bool isStandard = facts.subject == AlertSubject::StandardMetric;
    const bool isOfRecords = isStandard && facts.field.empty();
    Watched watched;
    if (!isStandard) {
        auto found = findWatched(connection, alert);
        if (!found)
            return found.error();
        watched = std::move(*found);
    }
    const std::string_view metric =
        isStandard ? metricCatalogue()[index(facts.metric)].name : std::string_view(watched.metric);
    auto insert = connection.prepare("INSERT INTO alert(table_id, field, description, metric, type_code, watched_key) "
                                     "VALUES(?1,?2,?3,?4,?5,?6)");
    if (!insert)
        return insert.error();
    insert->bind(1, alert.table);
    if (isStandard)
        insert->bind(2, alert.field).bind(4, static_cast<int>(facts.metric));
    else
        insert->bindNull(2).bindNull(4);
    const std::string sentence =
        isOfRecords ? recordsAlertSentence(facts.rule)
                    : alertSentence(facts.subject, facts.rule, metric, isStandard ? alert.fieldName : facts.watched);
    insert->bind(3, facts.description.empty() ? sentence : facts.description);
    if (auto done = insert->bind(5, alertTypeCode(facts.subject)).bind(6, watched.key).run(); !done)
        return done;
    const std::int64_t id = connection.lastInsertId();

    auto property = connection.prepare("INSERT INTO alert_property(alert, position, name, value) VALUES(?1,?2,?3,?4)");
    if (!property)
        return property.error();
    const std::array<std::pair<std::string_view, std::string>, 8> properties{
        {{"METRIC", isStandard ? formatInteger(static_cast<int>(facts.metric)) : watched.metric},
         {"COMPARE", formatInteger(alertCode(facts.subject, facts.rule))},
         {"VALUE1", formatReal(facts.rule.value1)},
         {"VALUE2", formatReal(facts.rule.value2)},
         {"JOB", formatInteger(job)},
         {"LEVEL", std::string(alertLevelWord(facts.rule.level))},
         {"RUNS", formatInteger(facts.rule.runs)},
         {"RECORDS", isOfRecords ? "1" : "0"}}};
    int position = 0;
    for (const auto& [name, value] : properties)
        if (auto done = property->bind(1, id).bind(2, position++).bind(3, name).bind(4, value).run(); !done)
            return done;
    return {};
}

} // namespace

Status replaceAlerts(sql::Connection& connection, int job, std::span<const StoredAlert> alerts) {
    auto remove = connection.prepare("DELETE FROM alert WHERE id IN (SELECT alert FROM alert_property WHERE "
                                     "name = 'JOB' AND value = ?1)");
    if (!remove)
        return remove.error();
    if (auto done = remove->bind(1, formatInteger(job)).run(); !done)
        return done;
    for (const StoredAlert& alert : alerts)
        if (auto stored = storeAlert(connection, job, alert); !stored)
            return Error{
                fmt::format("An alert of \"{}\" could not be stored. {}", alert.facts->table, stored.error().text)};
    return {};
}

} // namespace tavix::repository
