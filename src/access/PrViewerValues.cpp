#include "access/HistogramCursor.h"
#include "access/PrViewerImpl.h"
#include "base/DateTicks.h"
#include "base/Metrics.h"
#include "repository/HistogramStore.h"

#include <fmt/format.h>

namespace tavix {

namespace {

constexpr std::string_view kValueRows = "SELECT value_rows FROM run_field WHERE run = ?1 AND field = ?2";
constexpr std::string_view kPatternRows = "SELECT pattern_rows FROM run_field WHERE run = ?1 AND field = ?2";
constexpr std::string_view kValueSum = "SELECT value_sum FROM run_field WHERE run = ?1 AND field = ?2";
// One row if the run has the field, none otherwise.
constexpr std::string_view kPercentileRows =
    "SELECT (SELECT COUNT(*) FROM percentile p WHERE p.run = rf.run AND p.field = rf.field) FROM run_field rf "
    "WHERE rf.run = ?1 AND rf.field = ?2";
constexpr std::string_view kLowOutliers =
    "SELECT (SELECT COUNT(*) FROM outlier p WHERE p.run = rf.run AND p.field = rf.field AND p.side = 'L') "
    "FROM run_field rf WHERE rf.run = ?1 AND rf.field = ?2";
constexpr std::string_view kHighOutliers =
    "SELECT (SELECT COUNT(*) FROM outlier p WHERE p.run = rf.run AND p.field = rf.field AND p.side = 'H') "
    "FROM run_field rf WHERE rf.run = ?1 AND rf.field = ?2";

// Collections show fields of other reports, too, with the values of the latest run that has them.
constexpr std::string_view kRunOfField = "SELECT run FROM run_field WHERE field = ?2 AND run IN (SELECT id FROM run) "
                                         "ORDER BY run = ?1 DESC, run DESC LIMIT 1";

} // namespace

Result<int> PrViewer::Impl::runOfField(int field) const {
    if (auto ready = requireRun(); !ready)
        return ready.error();
    auto found = integer(kRunOfField, {run, field}, fmt::format("There is no field with the number {}.", field));
    if (!found)
        return found.error();
    return static_cast<int>(*found);
}

Result<std::int64_t> PrViewer::Impl::startOf(int ofRun) const {
    const auto milliseconds = integer("SELECT started FROM run WHERE id = ?1", {ofRun}, kRunWasDeleted);
    if (!milliseconds)
        return milliseconds.error();
    return ticksOf(UtcTime(std::chrono::milliseconds(*milliseconds)));
}

Result<std::int64_t> PrViewer::Impl::fieldNumber(std::string_view sql, int field) const {
    auto ofRun = runOfField(field);
    if (!ofRun)
        return ofRun.error();
    return integer(sql, {*ofRun, field}, fmt::format("There is no field with the number {}.", field));
}

std::int64_t PrViewer::Impl::giveNumber(const Result<std::int64_t>& number) {
    if (number)
        return *number;
    fail(number.error());
    return -1;
}

ProfileCursorHandle PrViewer::Impl::openDistribution(std::string_view operation, const repository::DistributionKey& key,
                                                     const Result<std::int64_t>& rows,
                                                     std::unique_ptr<DistributionFilter> filter,
                                                     PrViewDisplayMessage* sink) {
    if (!rows)
        return failCursor(rows.error());
    auto cursor = DistributionCursor::open(session, key, *rows, layout::of(operation), std::move(filter), sink);
    if (!cursor)
        return failCursor(cursor.error());
    return ProfileCursorHandle(cursor->release());
}

ProfileCursorHandle PrViewer::Impl::openFieldDistribution(std::string_view operation, int field,
                                                          repository::DistributionKind kind, std::string_view rowsSql,
                                                          const KvbString& filter, PrViewDisplayMessage* sink) {
    auto ofRun = runOfField(field);
    if (!ofRun)
        return failCursor(ofRun.error());
    std::unique_ptr<DistributionFilter> compiled;
    if (!filter.isEmpty()) {
        const auto started = startOf(*ofRun);
        if (!started)
            return failCursor(started.error());
        auto result = DistributionFilter::compile(filter.view(), *started);
        if (!result)
            return failCursor(result.error());
        compiled = std::move(*result);
    }
    return openDistribution(operation, {*ofRun, field, kind}, fieldNumber(rowsSql, field), std::move(compiled), sink);
}

ProfileCursorHandle PrViewer::getFreqDist(int fieldId, const KvbString& filter, PrViewDisplayMessage* sink) {
    return m_impl->openFieldDistribution("getFreqDist", fieldId, repository::DistributionKind::Values, kValueRows,
                                         filter, sink);
}

ProfileCursorHandle PrViewer::getPatternDist(int fieldId, const KvbString& filter, PrViewDisplayMessage* sink) {
    return m_impl->openFieldDistribution("getPatternDist", fieldId, repository::DistributionKind::Patterns,
                                         kPatternRows, filter, sink);
}

ProfileCursorHandle PrViewer::getPercentiles(int fieldId) {
    static const Query kQuery("getPercentiles",
                              "FROM percentile p WHERE p.run = ?1 AND p.field = ?2 ORDER BY p.position");
    auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->open({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

ProfileCursorHandle PrViewer::getOutliers(int fieldId) {
    static const Query kQuery("getOutliers", "FROM outlier p WHERE p.run = ?1 AND p.field = ?2 "
                                             "ORDER BY p.side DESC, p.position");
    auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->open({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

ProfileCursorHandle PrViewer::getHistogram(int fieldId) {
    auto ofRun = m_impl->runOfField(fieldId);
    if (!ofRun)
        return m_impl->failCursor(ofRun.error());
    auto histogram = repository::readHistogram(m_impl->connection(), *ofRun, fieldId);
    if (!histogram)
        return m_impl->failCursor(histogram.error());
    return ProfileCursorHandle(new HistogramCursor(std::move(*histogram)));
}

ProfileCursorHandle PrViewer::getFreqDistRanks(int fieldId) {
    static const Query kQuery("getFreqDistRanks", "FROM distribution_block b WHERE b.run = ?1 AND b.field = ?2 AND "
                                                  "b.kind = 'V' AND b.other_field = 0 ORDER BY b.block");
    auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->open({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

int PrViewer::getFreqDistCount(int fieldId) {
    return clampToInt(m_impl->giveNumber(m_impl->fieldNumber(kValueRows, fieldId)));
}

int PrViewer::getPatternDistCount(int fieldId) {
    return clampToInt(m_impl->giveNumber(m_impl->fieldNumber(kPatternRows, fieldId)));
}

int PrViewer::getPercentilesCount(int fieldId) {
    return clampToInt(m_impl->giveNumber(m_impl->fieldNumber(kPercentileRows, fieldId)));
}

bool PrViewer::getOutliersCount(int fieldId, int& low, int& high) {
    auto lows = m_impl->fieldNumber(kLowOutliers, fieldId);
    if (!lows)
        return m_impl->fail(lows.error());
    auto highs = m_impl->fieldNumber(kHighOutliers, fieldId);
    if (!highs)
        return m_impl->fail(highs.error());
    low = clampToInt(*lows);
    high = clampToInt(*highs);
    return true;
}

std::int64_t PrViewer::getFreqDistSum(int fieldId) {
    return m_impl->giveNumber(m_impl->fieldNumber(kValueSum, fieldId));
}

ProfileCursorHandle PrViewer::getFieldHistory(const KvbString& dataSource, const KvbString& catalog,
                                              const KvbString& schema, const KvbString& table, const KvbString& object,
                                              const KvbString& field, int limit) {
    static const Query kQuery("getFieldHistory",
                              "FROM run_field rf JOIN run r ON r.id = rf.run WHERE rf.field IN (SELECT f.id "
                              "FROM data_source d JOIN profiled_table t ON t.data_source = d.id "
                              "JOIN field f ON f.table_id = t.id WHERE d.name = ?1 AND t.catalog = ?2 AND "
                              "t.schema = ?3 AND t.name = ?4 AND t.object_name = ?5 AND f.name = ?6) AND rf.run IN "
                              "(SELECT id FROM run WHERE job = ?7 ORDER BY id DESC LIMIT ?8) "
                              "ORDER BY r.id, rf.field");
    if (auto ready = m_impl->requireJob(); !ready)
        return m_impl->failCursor(ready.error());
    auto statement = m_impl->connection().prepare(kQuery.sql);
    if (!statement)
        return m_impl->failCursor(statement.error());
    int parameter = 0;
    for (const KvbString* text : {&dataSource, &catalog, &schema, &table, &object, &field})
        statement->bind(++parameter, text->view());
    statement->bind(7, m_impl->job).bind(8, limit > 0 ? limit : -1);
    return m_impl->open(kQuery, std::move(*statement));
}

ProfileCursorHandle PrViewer::getTableHistory(int tableId, int metricId, int limit) {
    if (auto ready = m_impl->requireTable(tableId); !ready)
        return m_impl->failCursor(ready.error());
    const MetricInfo* const metric = findMetric(metricId);
    if (!metric)
        return m_impl->failCursor(Error{fmt::format("The metric {} is unknown.", metricId)});
    // The fields of a table in a run are next to each other.
    const Query query(
        "getTableHistory",
        fmt::format("rf.{} FROM (SELECT id, started FROM run WHERE job = ?1 AND id <= ?2 ORDER BY id DESC "
                    "LIMIT ?3) r CROSS JOIN run_field rf ON rf.run = r.id AND rf.table_id = ?4 "
                    "ORDER BY r.id, rf.position",
                    metric->column));
    return m_impl->open({}, query, {m_impl->job, m_impl->run, limit > 0 ? limit : -1, tableId});
}

ProfileCursorHandle PrViewer::getExecutionLog() {
    static const Query kQuery("getExecutionLog", "FROM execution_log l LEFT JOIN profiled_table t ON t.id = l.table_id "
                                                 "WHERE l.run = ?1 ORDER BY l.position");
    return m_impl->open(m_impl->requireRun(), kQuery, {m_impl->run});
}

ProfileCursorHandle PrViewer::getTaskList(int jobId) {
    static const Query kQuery("getTaskList", "FROM task w WHERE w.job = ?1 ORDER BY w.id");
    return m_impl->open(m_impl->requireExisting("SELECT 1 FROM job WHERE id = ?1", jobId, "report"), kQuery, {jobId});
}

} // namespace tavix
