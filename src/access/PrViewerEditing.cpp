#include "access/PrViewerImpl.h"
#include "repository/Analyses.h"
#include "repository/Charts.h"
#include "repository/Notes.h"
#include "repository/Schema.h"

#include <fmt/format.h>

#include <utility>

namespace tavix {

namespace {

constexpr std::string_view kFindTable = "SELECT 1 FROM profiled_table WHERE id = ?1";
constexpr std::string_view kFindCollection = "SELECT 1 FROM collection WHERE id = ?1";
constexpr std::string_view kFindChart = "SELECT 1 FROM chart WHERE id = ?1";
constexpr std::string_view kFindRedundancy = "SELECT 1 FROM redundancy WHERE id = ?1";
constexpr std::string_view kRedundancy = "redundant data analysis";
constexpr int kNewestFirst = 1;

Error badOwner(char kind) {
    return Error{fmt::format("Notes belong to a table (T) or a collection (C), not to \"{}\".", kind)};
}

} // namespace

bool PrViewer::beginChanges() {
    if (auto ready = m_impl->requireSession(); !ready)
        return m_impl->fail(ready.error());
    if (m_impl->changes)
        return m_impl->fail({"Changes were begun already."});
    auto writer = repository::openRepository(m_impl->path, sql::OpenMode::Write);
    if (!writer)
        return m_impl->fail(writer.error());
    auto transaction = sql::Transaction::begin(**writer);
    if (!transaction)
        return m_impl->fail(transaction.error());
    auto writing = std::make_shared<ViewerSession>();
    writing->connection = std::move(*writer);
    writing->closed = m_impl->session->closed;
    writing->sink = m_impl->displayMessage;
    m_impl->sessionBefore = std::exchange(m_impl->session, std::move(writing));
    m_impl->changes.emplace(std::move(*transaction));
    m_impl->haveChangesFailed = false;
    return true;
}

bool PrViewer::keepChanges() {
    if (!m_impl->changes)
        return m_impl->fail({"No changes were begun."});
    const Status kept = m_impl->haveChangesFailed ? Status{Error{m_impl->error.str()}} : m_impl->changes->commit();
    m_impl->endChanges();
    if (kept)
        m_impl->refreshSession();
    return m_impl->conclude(kept);
}

void PrViewer::dropChanges() {
    if (m_impl->changes)
        m_impl->endChanges();
}

ProfileCursorHandle PrViewer::getTableNotes(int ownerId, char kind, int order) {
    constexpr std::string_view kFrom = "FROM table_note n LEFT JOIN note_category g ON g.id = n.category "
                                       "WHERE n.owner = ?1 AND n.owner_kind = char(?2) ";
    static const Query kNewest("getTableNotes", std::string(kFrom) + "ORDER BY n.written DESC, n.id DESC");
    static const Query kOldest("getTableNotes", std::string(kFrom) + "ORDER BY n.written, n.id");
    if (kind != 'T' && kind != 'C')
        return m_impl->failCursor(badOwner(kind));
    Status ready = kind == 'T' ? m_impl->requireExisting(kFindTable, ownerId, "table")
                               : m_impl->requireExisting(kFindCollection, ownerId, "collection");
    return m_impl->open(ready, order == kNewestFirst ? kNewest : kOldest, {ownerId, kind});
}

ProfileCursorHandle PrViewer::getFieldNotes(int fieldId, int order) {
    constexpr std::string_view kFrom = "FROM field_note n LEFT JOIN note_category g ON g.id = n.category "
                                       "WHERE n.field = ?1 ";
    static const Query kNewest("getFieldNotes", std::string(kFrom) + "ORDER BY n.written DESC, n.id DESC");
    static const Query kOldest("getFieldNotes", std::string(kFrom) + "ORDER BY n.written, n.id");
    return m_impl->open(m_impl->requireExisting("SELECT 1 FROM field WHERE id = ?1", fieldId, "field"),
                        order == kNewestFirst ? kNewest : kOldest, {fieldId});
}

ProfileCursorHandle PrViewer::getNoteCategories() {
    static const Query kQuery("getNoteCategories", "FROM note_category g ORDER BY g.name");
    return m_impl->open(m_impl->requireSession(), kQuery, {});
}

bool PrViewer::createNewTableNote(int ownerId, char kind, int categoryId, const KvbString& user,
                                  const KvbString& text) {
    if (kind != 'T' && kind != 'C')
        return m_impl->fail(badOwner(kind));
    return m_impl->change([&](sql::Connection& connection) {
        return repository::addTableNote(connection, static_cast<repository::NoteOwner>(kind), ownerId, categoryId,
                                        user.view(), text.view(), m_impl->clock->now());
    });
}

bool PrViewer::createNewFieldNote(int fieldId, int categoryId, const KvbString& user, const KvbString& text) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::addFieldNote(connection, fieldId, categoryId, user.view(), text.view(),
                                        m_impl->clock->now());
    });
}

bool PrViewer::editTableNote(int noteId, int categoryId, const KvbString& text) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::editTableNote(connection, noteId, categoryId, text.view());
    });
}

bool PrViewer::editFieldNote(int noteId, int categoryId, const KvbString& text) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::editFieldNote(connection, noteId, categoryId, text.view());
    });
}

bool PrViewer::deleteTableNote(int noteId) {
    return m_impl->change([=](sql::Connection& connection) { return repository::deleteTableNote(connection, noteId); });
}

bool PrViewer::deleteFieldNote(int noteId) {
    return m_impl->change([=](sql::Connection& connection) { return repository::deleteFieldNote(connection, noteId); });
}

bool PrViewer::createNewNoteCategory(const KvbString& name) {
    return m_impl->change(
        [&](sql::Connection& connection) { return repository::addNoteCategory(connection, name.view()); });
}

bool PrViewer::editNoteCategory(int categoryId, const KvbString& name) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::renameNoteCategory(connection, categoryId, name.view());
    });
}

bool PrViewer::deleteNoteCategory(int categoryId) {
    return m_impl->change(
        [=](sql::Connection& connection) { return repository::deleteNoteCategory(connection, categoryId); });
}

ProfileCursorHandle PrViewer::getTableCharts(int tableId) {
    static const Query kQuery("getTableCharts", "FROM chart h WHERE h.table_id = ?1 ORDER BY h.id");
    return m_impl->open(m_impl->requireExisting(kFindTable, tableId, "table"), kQuery, {tableId});
}

ProfileCursorHandle PrViewer::getCategoryCharts(int category) {
    static const Query kQuery("getCategoryCharts", "FROM chart h WHERE h.category = ?1 ORDER BY h.id");
    return m_impl->open(m_impl->requireSession(), kQuery, {category});
}

ProfileCursorHandle PrViewer::getChartProperties(int chartId) {
    static const Query kQuery("getChartProperties", "FROM chart_property p WHERE p.chart = ?1 ORDER BY p.id");
    return m_impl->open(m_impl->requireExisting(kFindChart, chartId, "chart"), kQuery, {chartId});
}

bool PrViewer::createEditTableChart(int& chartId, int tableId, const KvbString& name, const KvbString& description) {
    return m_impl->change(chartId, [&](sql::Connection& connection) {
        return repository::putTableChart(connection, chartId, tableId, name.view(), description.view());
    });
}

bool PrViewer::createEditCategoryChart(int& chartId, int category, const KvbString& name,
                                       const KvbString& description) {
    return m_impl->change(chartId, [&](sql::Connection& connection) {
        return repository::putCategoryChart(connection, chartId, category, name.view(), description.view());
    });
}

bool PrViewer::deleteChart(int chartId) {
    return m_impl->change([=](sql::Connection& connection) { return repository::deleteChart(connection, chartId); });
}

bool PrViewer::clearChartProperties(int chartId) {
    return m_impl->change(
        [=](sql::Connection& connection) { return repository::clearChartProperties(connection, chartId); });
}

bool PrViewer::addChartProperty(int chartId, const KvbString& name, int position, const KvbString& value) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::addChartProperty(connection, chartId, name.view(), position, value.view());
    });
}

ProfileCursorHandle PrViewer::getPKFKAnalysis(int fieldId) {
    static const Query kQuery("getPKFKAnalysis",
                              "FROM key_analysis k JOIN field f ON f.id = k.other_field "
                              "JOIN profiled_table t ON t.id = f.table_id JOIN data_source d ON d.id = t.data_source "
                              "WHERE k.run = ?1 AND k.field = ?2 ORDER BY k.match_percent DESC, k.other_field");
    const auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->open({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

ProfileCursorHandle PrViewer::getPKFKAnalysisOutliers(int fieldId, int otherFieldId) {
    const auto ofRun = m_impl->runOfField(fieldId);
    if (!ofRun)
        return m_impl->failCursor(ofRun.error());
    auto rows = m_impl->integer("SELECT unmatched_rows FROM key_analysis WHERE run = ?1 AND field = ?2 AND "
                                "other_field = ?3",
                                {*ofRun, fieldId, otherFieldId}, "There is no key analysis of these two fields.");
    return m_impl->openDistribution("getPKFKAnalysisOutliers",
                                    {*ofRun, fieldId, repository::DistributionKind::Unmatched, otherFieldId}, rows);
}

bool PrViewer::generatePKFKAnalysis(int, int) {
    (void)m_impl->unavailable("Making key analyses is");
    return false;
}

bool PrViewer::deletePKFKAnalysis(int fieldId, int otherFieldId) {
    if (auto ready = m_impl->requireRun(); !ready)
        return m_impl->fail(ready.error());
    return m_impl->change([&](sql::Connection& connection) {
        return repository::deleteKeyAnalysis(connection, m_impl->run, fieldId, otherFieldId);
    });
}

ProfileCursorHandle PrViewer::getRdaCfgs() {
    static const Query kQuery("getRdaCfgs", "FROM redundancy x ORDER BY x.name");
    return m_impl->open(m_impl->requireSession(), kQuery, {});
}

ProfileCursorHandle PrViewer::getRdaCfg(int cfgId) {
    static const Query kQuery("getRdaCfg", "FROM redundancy x WHERE x.id = ?1");
    return m_impl->open(m_impl->requireExisting(kFindRedundancy, cfgId, kRedundancy), kQuery, {cfgId});
}

ProfileCursorHandle PrViewer::getRdaCfgFields(int cfgId) {
    static const Query kQuery("getRdaCfgFields",
                              "FROM redundancy_field m JOIN field f ON f.id = m.field "
                              "JOIN profiled_table t ON t.id = f.table_id JOIN data_source d ON d.id = t.data_source "
                              "WHERE m.redundancy = ?1 ORDER BY m.position");
    return m_impl->open(m_impl->requireExisting(kFindRedundancy, cfgId, kRedundancy), kQuery, {cfgId});
}

ProfileCursorHandle PrViewer::getRdaResults(int, int, int) {
    return m_impl->unavailable("Results of redundant data analyses are");
}

ProfileCursorHandle PrViewer::getRedundantAnalysisCommon(int, int, int) {
    return m_impl->unavailable("Results of redundant data analyses are");
}

ProfileCursorHandle PrViewer::getRedundantAnalysisLeft(int, int, int) {
    return m_impl->unavailable("Results of redundant data analyses are");
}

ProfileCursorHandle PrViewer::getRedundantAnalysisRight(int, int, int) {
    return m_impl->unavailable("Results of redundant data analyses are");
}

bool PrViewer::createRdaCfg(const KvbString& name, const KvbString& description, int& cfgId) {
    return m_impl->change(cfgId, [&](sql::Connection& connection) {
        return repository::addRedundancy(connection, name.view(), description.view());
    });
}

bool PrViewer::updateRdaCfg(int cfgId, const KvbString& name, const KvbString& description) {
    return m_impl->change([&](sql::Connection& connection) {
        return repository::updateRedundancy(connection, cfgId, name.view(), description.view());
    });
}

bool PrViewer::deleteRdaCfg(int cfgId) {
    return m_impl->change([=](sql::Connection& connection) { return repository::deleteRedundancy(connection, cfgId); });
}

bool PrViewer::createFldRdaMap(int cfgId, int fieldId) {
    return m_impl->change(
        [=](sql::Connection& connection) { return repository::addRedundancyField(connection, cfgId, fieldId); });
}

bool PrViewer::deleteAllRdaMaps(int cfgId) {
    return m_impl->change(
        [=](sql::Connection& connection) { return repository::clearRedundancyFields(connection, cfgId); });
}

} // namespace tavix
