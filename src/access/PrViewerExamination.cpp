#include "access/PrViewerImpl.h"
#include "repository/ExaminationStore.h"

#include <fmt/format.h>

namespace tavix {

namespace {

/// ?1 is the run.
std::string findingsWhere(std::string_view condition) {
    return fmt::format("FROM finding b JOIN run_table rt ON rt.run = b.run AND rt.table_id = b.table_id "
                       "JOIN profiled_table t ON t.id = b.table_id LEFT JOIN field f ON f.id = b.field "
                       "LEFT JOIN dismissed_finding x ON x.table_id = b.table_id AND x.field = b.field AND "
                       "x.code = b.code WHERE b.run = ?1{} "
                       "ORDER BY b.likelihood DESC, b.row_count DESC, rt.position, b.field, b.code",
                       condition);
}

} // namespace

ProfileCursorHandle PrViewer::Impl::openExamined(const Status& ready, const Query& query,
                                                 std::initializer_list<std::int64_t> parameters) {
    if (!ready)
        return failCursor(ready.error());
    const auto version = connection().schemaVersion();
    if (!version)
        return failCursor(version.error());
    auto statement =
        *version >= repository::kFirstExamined ? bound(query.sql, parameters) : bound("SELECT 1 WHERE 0", {});
    return statement ? open(query, std::move(*statement)) : failCursor(statement.error());
}

bool PrViewer::isExamined() {
    if (Status ready = m_impl->requireRun(); !ready)
        return m_impl->fail(ready.error());
    const auto version = m_impl->connection().schemaVersion();
    if (!version)
        return m_impl->fail(version.error());
    if (*version < repository::kFirstExamined)
        return false;
    const auto found =
        m_impl->integer("SELECT EXISTS (SELECT 1 FROM run_examination WHERE run = ?1)", {m_impl->run}, {});
    return found ? *found != 0 : m_impl->fail(found.error());
}

ProfileCursorHandle PrViewer::getTypeBreakdown(int fieldId) {
    static const Query kQuery("getTypeBreakdown", "FROM type_breakdown b WHERE b.run = ?1 AND b.field = ?2");
    const auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->openExamined({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

ProfileCursorHandle PrViewer::getTypeForms(int fieldId) {
    static const Query kQuery("getTypeForms", "FROM type_form b WHERE b.run = ?1 AND b.field = ?2 ORDER BY b.position");
    const auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->openExamined({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

ProfileCursorHandle PrViewer::getFitReadings(int tableId) {
    static const Query kQuery("getFitReadings",
                              "FROM run_field rf JOIN type_breakdown b ON b.run = rf.run AND b.field = rf.field "
                              "WHERE rf.table_id = ?2 AND rf.run = COALESCE((SELECT run FROM run_table WHERE run = ?1 "
                              "AND table_id = ?2), (SELECT MAX(run) FROM run_table WHERE table_id = ?2)) "
                              "ORDER BY rf.position");
    return m_impl->openExamined(m_impl->requireExisting("SELECT 1 FROM profiled_table WHERE id = ?1", tableId, "table"),
                                kQuery, {m_impl->run, tableId});
}

ProfileCursorHandle PrViewer::getFindings() {
    static const Query kQuery("getFindings", findingsWhere(""));
    return m_impl->openExamined(m_impl->requireRun(), kQuery, {m_impl->run});
}

ProfileCursorHandle PrViewer::getTableFindings(int tableId) {
    static const Query kQuery("getTableFindings", findingsWhere(" AND b.table_id = ?2"));
    return m_impl->openExamined(m_impl->requireTable(tableId), kQuery, {m_impl->run, tableId});
}

ProfileCursorHandle PrViewer::getFieldFindings(int fieldId) {
    static const Query kQuery("getFieldFindings", findingsWhere(" AND b.field = ?2"));
    const auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->openExamined({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

bool PrViewer::dismissFinding(int tableId, int fieldId, const KvbString& code, const KvbString& user,
                              const KvbString& reason) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::dismissFinding(connection, tableId, fieldId, code.view(), user.view(), reason.view(),
                                          m_impl->clock->now());
    });
}

bool PrViewer::restoreFinding(int tableId, int fieldId, const KvbString& code) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::restoreFinding(connection, tableId, fieldId, code.view());
    });
}

} // namespace tavix
