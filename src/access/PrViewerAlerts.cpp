#include "access/PrViewerImpl.h"
#include "base/AlertDefinition.h"
#include "repository/AlertMutes.h"
#include "repository/AlertStore.h"

#include <fmt/format.h>

#include <limits>

namespace tavix {

namespace {

constexpr std::int64_t kFirstRules = 2;
constexpr std::string_view kFindAlert = "SELECT 1 FROM alert WHERE id = ?1";

/// `alert`, or a query that gives an older repository its columns.
std::string_view alertTable(std::int64_t version) {
    return version >= repository::kFirstUserAlerts
               ? "alert"
               : "(SELECT id, table_id, field, description, metric, type_code, watched_key, 'J' AS origin, '' AS "
                 "author, NULL AS created, id AS position, (SELECT CAST(p.value AS INTEGER) FROM alert_property p "
                 "WHERE "
                 "p.alert = b.id AND p.name = 'JOB') AS job, EXISTS (SELECT 1 FROM alert_property p WHERE p.alert = "
                 "b.id AND p.name = 'RECORDS' AND p.value = '1') AS of_records FROM alert b)";
}

/// The figures of alerts `a` in the run `r`. Without the named indexes SQLite may read all metrics and rules of each
/// run. Alerts on the records of a table have the Count of its first field.
std::string figuresOf(std::int64_t version) {
    std::string joins =
        "LEFT JOIN run_field rf ON rf.run = r.id AND rf.field = CASE WHEN a.of_records THEN (SELECT first.field FROM "
        "run_field first WHERE first.run = r.id AND first.table_id = a.table_id ORDER BY first.position LIMIT 1) ELSE "
        "a.field END ";
    if (version < kFirstRules)
        return joins + "LEFT JOIN (SELECT NULL AS value) cv ON 0 LEFT JOIN (SELECT NULL AS failed_rows, NULL AS "
                       "checked_rows) br ON 0 ";
    return joins + "LEFT JOIN run_custom_metric cv INDEXED BY run_custom_metric_by_metric ON cv.run = r.id AND "
                   "cv.metric = CASE a.type_code WHEN 'CM' THEN "
                   "CAST(substr(a.watched_key, 2) AS INTEGER) END "
                   "LEFT JOIN run_rule br INDEXED BY run_rule_by_rule ON br.run = r.id AND br.rule = CASE a.type_code "
                   "WHEN 'BR' THEN "
                   "CAST(substr(a.watched_key, 2) AS INTEGER) END ";
}

/// The runs `r` of the job ?1: the last ?3 up to ?2.
constexpr std::string_view kLatestRuns =
    "CROSS JOIN run r ON r.job = ?1 AND r.id <= ?2 AND r.id >= (SELECT MIN(id) FROM (SELECT id FROM run WHERE job = ?1 "
    "AND id <= ?2 ORDER BY id DESC LIMIT ?3)) ";

/// The bounds of kLatestRuns.
std::int64_t upTo(int lastRun) {
    return lastRun == -1 ? std::numeric_limits<std::int64_t>::max() : lastRun;
}

std::int64_t atMost(int runs) {
    return runs > 0 ? runs : -1;
}

std::string jsonList(const std::vector<int>& numbers) {
    return fmt::format("[{}]", fmt::join(numbers, ","));
}

} // namespace

ProfileCursorHandle PrViewer::Impl::openUserAlerts(const Status& ready, const Query& query,
                                                   std::initializer_list<std::int64_t> parameters) {
    if (!ready)
        return failCursor(ready.error());
    const auto version = connection().schemaVersion();
    if (!version)
        return failCursor(version.error());
    auto statement =
        *version >= repository::kFirstUserAlerts ? bound(query.sql, parameters) : bound("SELECT 1 WHERE 0", {});
    return statement ? open(query, std::move(*statement)) : failCursor(statement.error());
}

ProfileCursorHandle PrViewer::getAlerts() {
    if (auto ready = m_impl->requireSession(); !ready)
        return m_impl->failCursor(ready.error());
    const auto version = m_impl->connection().schemaVersion();
    if (!version)
        return m_impl->failCursor(version.error());
    const std::string_view watched =
        *version >= kFirstRules
            ? "LEFT JOIN custom_metric cm ON a.type_code = 'CM' AND cm.id = CAST(substr(a.watched_key, 2) AS INTEGER) "
              "LEFT JOIN business_rule b ON a.type_code = 'BR' AND b.id = CAST(substr(a.watched_key, 2) AS INTEGER) "
            : "LEFT JOIN (SELECT NULL AS id, NULL AS name) cm ON 0 LEFT JOIN (SELECT NULL AS id, NULL AS name) b ON 0 ";
    const Query query("getAlerts",
                      fmt::format("FROM {} a JOIN profiled_table t ON t.id = a.table_id JOIN data_source d ON d.id = "
                                  "t.data_source LEFT JOIN field f ON f.id = a.field {}"
                                  "ORDER BY a.job, a.origin, a.position, a.id",
                                  alertTable(*version), watched));
    return m_impl->open({}, query, {});
}

ProfileCursorHandle PrViewer::getAlertProperties(int alertId) {
    static const Query kQuery("getAlertProperties", "FROM alert_property p WHERE p.alert = ?1 ORDER BY p.position");
    return m_impl->open(m_impl->requireExisting(kFindAlert, alertId, "alert"), kQuery, {alertId});
}

ProfileCursorHandle PrViewer::getAllAlertProperties() {
    static const Query kQuery("getAllAlertProperties", "FROM alert_property p ORDER BY p.alert, p.position");
    return m_impl->open(m_impl->requireSession(), kQuery, {});
}

ProfileCursorHandle PrViewer::getAlertFigures(int jobId, int lastRun, int runs, const std::vector<int>& alerts) {
    if (auto ready = m_impl->requireExisting("SELECT 1 FROM job WHERE id = ?1", jobId, "report"); !ready)
        return m_impl->failCursor(ready.error());
    const auto version = m_impl->connection().schemaVersion();
    if (!version)
        return m_impl->failCursor(version.error());
    const Query query("getAlertFigures",
                      fmt::format("FROM {} a {}{}WHERE a.job = ?1{} ORDER BY a.id, r.id DESC", alertTable(*version),
                                  kLatestRuns, figuresOf(*version),
                                  alerts.empty() ? "" : " AND a.id IN (SELECT value FROM json_each(?4))"));
    auto statement = m_impl->bound(query.sql, {jobId, upTo(lastRun), atMost(runs)});
    if (!statement)
        return m_impl->failCursor(statement.error());
    if (!alerts.empty())
        statement->bind(4, std::string_view(jsonList(alerts)));
    return m_impl->open(query, std::move(*statement));
}

ProfileCursorHandle PrViewer::getWatchedFigures(const AlertDefinition& watched, int lastRun, int runs) {
    if (auto ready = m_impl->requireJob(); !ready)
        return m_impl->failCursor(ready.error());
    const auto version = m_impl->connection().schemaVersion();
    if (!version)
        return m_impl->failCursor(version.error());
    const bool isStandard = watched.subject == AlertSubject::StandardMetric;
    const Query query("getWatchedFigures",
                      fmt::format("FROM (SELECT -1 AS id, ?4 AS table_id, ?5 AS field, ?6 AS metric, ?7 AS type_code, "
                                  "?8 AS watched_key, ?9 AS of_records) a {}{}ORDER BY r.id DESC",
                                  kLatestRuns, figuresOf(*version)));
    auto statement = m_impl->bound(query.sql, {m_impl->job, upTo(lastRun), atMost(runs), watched.table, watched.field});
    if (!statement)
        return m_impl->failCursor(statement.error());
    statement->bind(6, static_cast<int>(watched.metric)).bind(7, alertTypeCode(watched.subject));
    statement->bind(8, std::string_view(fmt::format("W{}", watched.watched)));
    statement->bind(9, isStandard && watched.field == -1 ? 1 : 0);
    return m_impl->open(query, std::move(*statement));
}

bool PrViewer::createEditAlert(int& alertId, const AlertDefinition& definition, const KvbString& user) {
    if (auto ready = m_impl->requireJob(); !ready)
        return m_impl->fail(ready.error());
    return m_impl->change(alertId, [&](sql::Connection& connection) {
        return repository::putUserAlert(connection, alertId, m_impl->job, definition, user.view(),
                                        m_impl->clock->now());
    });
}

bool PrViewer::deleteAlert(int alertId) {
    return m_impl->change(
        [=](sql::Connection& connection) { return repository::deleteUserAlert(connection, alertId); });
}

ProfileCursorHandle PrViewer::getAlertMutes() {
    // Runs are counted as they are stored. A mute ends before the first run that starts too late.
    static const Query kQuery(
        "getAlertMutes",
        "FROM (WITH numbered AS MATERIALIZED (SELECT id, job, ROW_NUMBER() OVER (PARTITION BY job ORDER BY id) AS "
        "number FROM run) SELECT n.*, COALESCE(n.last_run, e.id) AS end_by_runs, (SELECT r.id - 1 FROM run r WHERE "
        "r.job = a.job AND r.id >= n.first_run AND r.started >= n.until ORDER BY r.id LIMIT 1) AS end_by_date "
        "FROM alert_mute n JOIN alert a ON a.id = n.alert LEFT JOIN numbered s ON s.id = (SELECT MIN(r.id) FROM run r "
        "WHERE r.job = a.job AND r.id >= n.first_run) LEFT JOIN numbered e ON e.job = a.job AND e.number = s.number + "
        "n.runs - 1) m ORDER BY m.alert");
    return m_impl->openUserAlerts(m_impl->requireSession(), kQuery, {});
}

bool PrViewer::muteAlert(int alertId, const KvbString& user, const KvbString& reason, int runs,
                         std::optional<UtcTime> until) {
    return m_impl->change([&](sql::Connection& connection) -> Status {
        // For an alert of another report, its latest run is shown.
        auto first = connection.prepare("SELECT CASE WHEN a.job = ?2 THEN ?3 ELSE (SELECT MAX(r.id) FROM run r WHERE "
                                        "r.job = a.job) END FROM alert a WHERE a.id = ?1");
        if (!first)
            return first.error();
        first->bind(1, alertId).bind(2, m_impl->job).bind(3, m_impl->run);
        if (Status found = first->stepToRow(noSuch("alert", alertId)); !found)
            return found;
        if (first->isNull(0))
            return Error{"The report of this alert has no runs."};
        const repository::MuteSpan span{static_cast<int>(first->integer(0)), runs, until};
        return repository::muteAlert(connection, alertId, user.view(), reason.view(), span, m_impl->clock->now());
    });
}

bool PrViewer::unmuteAlert(int alertId) {
    return m_impl->change([=](sql::Connection& connection) { return repository::unmuteAlert(connection, alertId); });
}

ProfileCursorHandle PrViewer::getAlertChanges(int alertId) {
    static const Query kQuery("getAlertChanges",
                              "FROM alert_change n WHERE n.alert = ?1 ORDER BY n.changed DESC, n.id DESC");
    return m_impl->openUserAlerts(m_impl->requireExisting(kFindAlert, alertId, "alert"), kQuery, {alertId});
}

ProfileCursorHandle PrViewer::getAlertNotes(int alertId) {
    static const Query kQuery("getAlertNotes",
                              "FROM alert_note n WHERE n.alert = ?1 ORDER BY n.written DESC, n.id DESC");
    return m_impl->openUserAlerts(m_impl->requireExisting(kFindAlert, alertId, "alert"), kQuery, {alertId});
}

bool PrViewer::createNewAlertNote(int alertId, const KvbString& user, const KvbString& text) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::addAlertNote(connection, alertId, user.view(), text.view(), m_impl->clock->now());
    });
}

bool PrViewer::deleteAlertNote(int noteId) {
    return m_impl->change([=](sql::Connection& connection) { return repository::deleteAlertNote(connection, noteId); });
}

} // namespace tavix
