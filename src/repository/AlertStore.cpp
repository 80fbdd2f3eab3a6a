#include "repository/AlertStore.h"

#include "base/NoteText.h"
#include "repository/AlertRow.h"

#include <fmt/format.h>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace tavix::repository {

namespace {

/// What is watched, whichever way it is judged.
std::string figureKey(const AlertDefinition& definition) {
    const bool isStandard = definition.subject == AlertSubject::StandardMetric;
    return fmt::format("{}|{}|{}|{}", definition.table, alertTypeCode(definition.subject),
                       isStandard ? definition.field : definition.watched,
                       isStandard ? static_cast<int>(definition.metric) : -1);
}

std::string comparisonKey(const AlertDefinition& definition) {
    return fmt::format("{}|{}", figureKey(definition), alertCode(definition.subject, definition.rule));
}

std::string ruleKey(const AlertDefinition& definition) {
    const AlertRule& rule = definition.rule;
    return fmt::format("{}|{}|{}|{}|{}|{}", comparisonKey(definition), rule.value1, rule.value2,
                       alertLevelWord(rule.level), rule.runs, alertReferenceWord(rule.reference));
}

constexpr std::size_t kNoMatch = static_cast<std::size_t>(-1);

/// For each new alert the index of the stored one that it becomes, or kNoMatch.
std::vector<std::size_t> matchAlerts(const std::vector<StoredAlert>& stored, std::span<const AlertDefinition> alerts) {
    std::vector<std::size_t> matches(alerts.size(), kNoMatch);
    std::vector<bool> isTaken(stored.size(), false);
    for (const auto& keyOf : {ruleKey, comparisonKey, figureKey}) {
        std::map<std::string, std::vector<std::size_t>> left; // the first one last
        for (std::size_t i = stored.size(); i-- > 0;)
            if (!isTaken[i])
                left[keyOf(stored[i].definition)].push_back(i);
        for (std::size_t i = 0; i < alerts.size(); ++i) {
            if (matches[i] != kNoMatch)
                continue;
            const auto found = left.find(keyOf(alerts[i]));
            if (found == left.end() || found->second.empty())
                continue;
            matches[i] = found->second.back();
            isTaken[matches[i]] = true;
            found->second.pop_back();
        }
    }
    return matches;
}

/// The alert if it belongs to a user.
Result<StoredAlert> readUserAlert(sql::Connection& connection, int alert) {
    auto origin = connection.prepare("SELECT origin FROM alert WHERE id = ?1");
    if (!origin)
        return origin.error();
    const Error missing{fmt::format("There is no alert with the number {}.", alert)};
    if (Status found = origin->bind(1, alert).stepToRow(missing); !found)
        return found.error();
    if (origin->text(0) != "U")
        return Error{"The job defines this alert; each run stores it again. Change it in the job file."};
    auto alerts = readAlerts(connection, "a.id = ?1", alert);
    if (!alerts)
        return alerts.error();
    return std::move(alerts->front());
}

Status requireTableOfJob(sql::Connection& connection, int table, int job) {
    auto find = connection.prepare("SELECT 1 FROM run r JOIN run_table rt ON rt.run = r.id AND rt.table_id = ?1 WHERE "
                                   "r.job = ?2 LIMIT 1");
    if (!find)
        return find.error();
    return find->bind(1, table).bind(2, job).stepToRow(
        {fmt::format("The report has no table with the number {}.", table)});
}

/// The row of a user's alert, whose table must be in a run of the job.
Result<AlertRow> makeUserRow(sql::Connection& connection, int job, const AlertDefinition& definition) {
    if (Status found = requireTableOfJob(connection, definition.table, job); !found)
        return found.error();
    return makeRow(connection, job, definition);
}

Result<int> makeUserAlert(sql::Connection& connection, int job, const AlertDefinition& definition,
                          std::string_view user, UtcTime now) {
    auto row = makeUserRow(connection, job, definition);
    const std::string author(user);
    return row ? insertAlert(connection, *row, 0, {job, &author, now}) : Result<int>(row.error());
}

/// The alert stays with its job.
Result<int> changeUserAlert(sql::Connection& connection, int alert, const AlertDefinition& definition,
                            std::string_view user, UtcTime now) {
    auto before = readUserAlert(connection, alert);
    if (!before)
        return before.error();
    auto row = makeUserRow(connection, before->job, definition);
    if (!row)
        return row.error();
    const auto rowBefore = makeRow(connection, before->job, before->definition);
    const std::string conditionBefore =
        rowBefore ? rowBefore->condition(before->definition.rule) : before->definition.description;
    if (Status done = updateAlert(connection, *before, *row, before->position); !done)
        return done.error();
    if (Status done = noteChange(connection, alert, conditionBefore, row->condition(row->definition.rule), user, now);
        !done)
        return done.error();
    return alert;
}

} // namespace

Result<int> findWatched(sql::Connection& connection, int table, AlertSubject subject, std::string_view name) {
    const bool isMetric = subject == AlertSubject::CustomMetric;
    auto find = connection.prepare(isMetric ? "SELECT id FROM custom_metric WHERE table_id = ?1 AND name = ?2"
                                            : "SELECT id FROM business_rule WHERE table_id = ?1 AND name = ?2");
    if (!find)
        return find.error();
    const Error missing{fmt::format("There is no {} \"{}\".", isMetric ? "custom metric" : "rule", name)};
    if (Status found = find->bind(1, table).bind(2, name).stepToRow(missing); !found)
        return found.error();
    return static_cast<int>(find->integer(0));
}

Status replaceAlerts(sql::Connection& connection, int job, std::span<const AlertDefinition> alerts, UtcTime changed) {
    auto stored = readAlerts(connection, "a.job = ?1 AND a.origin = 'J'", job);
    if (!stored)
        return stored.error();
    const std::vector<std::size_t> matches = matchAlerts(*stored, alerts);
    std::vector<bool> isKept(stored->size(), false);
    for (std::size_t i = 0; i < alerts.size(); ++i) {
        auto row = makeRow(connection, job, alerts[i]);
        if (!row)
            return row.error();
        const int position = static_cast<int>(i) + 1;
        if (matches[i] == kNoMatch) {
            if (auto made = insertAlert(connection, *row, position, {job}); !made)
                return made.error();
            continue;
        }
        const StoredAlert& before = (*stored)[matches[i]];
        isKept[matches[i]] = true;
        if (Status done = updateAlert(connection, before, *row, position); !done)
            return done;
        if (Status done = noteChange(connection, before.id, row->condition(before.definition.rule),
                                     row->condition(row->definition.rule), "", changed);
            !done)
            return done;
    }
    for (std::size_t i = 0; i < stored->size(); ++i)
        if (!isKept[i])
            if (Status done = removeAlert(connection, (*stored)[i].id); !done)
                return done;
    return {};
}

Result<int> putUserAlert(sql::Connection& connection, int alert, int job, const AlertDefinition& definition,
                         std::string_view user, UtcTime now) {
    AlertDefinition tidied = definition;
    tidied.description = tidyNote(definition.description);
    if (Status checked = checkAlertDescription(tidied.description); !checked)
        return checked.error();
    if (Status checked = checkAlertRule(tidied.rule); !checked)
        return checked.error();
    return alert == -1 ? makeUserAlert(connection, job, tidied, user, now)
                       : changeUserAlert(connection, alert, tidied, user, now);
}

Status deleteUserAlert(sql::Connection& connection, int alert) {
    if (auto found = readUserAlert(connection, alert); !found)
        return found.error();
    return removeAlert(connection, alert);
}

} // namespace tavix::repository
