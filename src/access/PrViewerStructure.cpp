#include "access/PrViewerImpl.h"
#include "expression/Catalogue.h"
#include "pattern/CharacterPattern.h"
#include "repository/Collections.h"
#include "repository/Existence.h"

namespace tavix {

namespace {

constexpr std::string_view kFindCollection = "SELECT 1 FROM collection WHERE id = ?1";

// ?1 is the run, ?2 the table.
constexpr std::string_view kFieldsOfTable = "FROM run_field rf JOIN field f ON f.id = rf.field "
                                            "WHERE rf.run = ?1 AND rf.table_id = ?2 ORDER BY rf.position";

// ?1 is the current run, ?2 the collection.
constexpr std::string_view kFieldsOfCollection =
    "FROM collection_field m JOIN field f ON f.id = m.field JOIN profiled_table t ON t.id = f.table_id "
    "JOIN data_source d ON d.id = t.data_source LEFT JOIN run_field rf ON rf.field = m.field AND rf.run = COALESCE("
    "(SELECT run FROM run_field WHERE field = m.field AND run = ?1 AND run IN (SELECT id FROM run)), "
    "(SELECT run FROM run_field WHERE field = m.field AND run IN (SELECT id FROM run) ORDER BY run DESC LIMIT 1)) "
    "WHERE m.collection = ?2 ORDER BY m.position";

} // namespace

ProfileCursorHandle PrViewer::getDSNList() {
    static const Query kQuery("getDSNList", "FROM run_table rt JOIN profiled_table t ON t.id = rt.table_id "
                                            "JOIN data_source d ON d.id = t.data_source WHERE rt.run = ?1 "
                                            "GROUP BY d.id ORDER BY MIN(rt.position)");
    return m_impl->open(m_impl->requireRun(), kQuery, {m_impl->run});
}

ProfileCursorHandle PrViewer::getTableList(int dataSourceId) {
    static const Query kQuery("getTableList", "FROM run_table rt JOIN profiled_table t ON t.id = rt.table_id "
                                              "WHERE rt.run = ?1 AND ?2 IN (-1, t.data_source) ORDER BY rt.position");
    Status ready = m_impl->requireRun();
    if (ready && dataSourceId != -1)
        ready = m_impl->requireExisting("SELECT 1 FROM data_source WHERE id = ?1", dataSourceId, "data source");
    return m_impl->open(ready, kQuery, {m_impl->run, dataSourceId});
}

ProfileCursorHandle PrViewer::getTableOfField(int fieldId) {
    static const Query kQuery("getTableOfField",
                              "FROM run_field rf JOIN run_table rt ON rt.run = rf.run AND rt.table_id = rf.table_id "
                              "JOIN profiled_table t ON t.id = rt.table_id WHERE rf.run = ?1 AND rf.field = ?2");
    const auto ofRun = m_impl->runOfField(fieldId);
    return ofRun ? m_impl->open({}, kQuery, {*ofRun, fieldId}) : m_impl->failCursor(ofRun.error());
}

ProfileCursorHandle PrViewer::getTablesOfRun(int runId) {
    static const Query kQuery("getTablesOfRun", "FROM run_table rt JOIN profiled_table t ON t.id = rt.table_id "
                                                "WHERE rt.run = ?1 ORDER BY rt.position");
    return m_impl->open(m_impl->requireRunOfJob(runId), kQuery, {runId});
}

ProfileCursorHandle PrViewer::getFieldsOfRun(int runId) {
    static const Query kQuery("getFieldsOfRun", "FROM run_field rf JOIN field f ON f.id = rf.field "
                                                "WHERE rf.run = ?1 ORDER BY rf.table_id, rf.position");
    return m_impl->open(m_impl->requireRunOfJob(runId), kQuery, {runId});
}

ProfileCursorHandle PrViewer::getFieldList(int tableId) {
    static const Query kQuery("getFieldList", kFieldsOfTable);
    return m_impl->open(m_impl->requireTable(tableId), kQuery, {m_impl->run, tableId});
}

ProfileCursorHandle PrViewer::getFieldListPKR(int tableId) {
    static const Query kQuery("getFieldListPKR", kFieldsOfTable);
    return m_impl->open(m_impl->requireTable(tableId), kQuery, {m_impl->run, tableId});
}

bool PrViewer::getFieldInfo(int fieldId, KvbString& dataSource, KvbString& catalog, KvbString& schema, KvbString& table,
                            KvbString& object, char& kind, KvbString& field, int& tableId) {
    if (auto ready = m_impl->requireSession(); !ready)
        return m_impl->fail(ready.error());
    auto select = m_impl->boundRow("SELECT d.name, t.catalog, t.schema, t.name, t.object_name, t.kind, f.name, t.id "
                                   "FROM field f JOIN profiled_table t ON t.id = f.table_id "
                                   "JOIN data_source d ON d.id = t.data_source WHERE f.id = ?1",
                                   {fieldId}, noSuch("field", fieldId));
    if (!select)
        return m_impl->fail(select.error());
    dataSource = select->text(0);
    catalog = select->text(1);
    schema = select->text(2);
    table = select->text(3);
    object = select->text(4);
    std::string_view letter = select->text(5);
    kind = letter.empty() ? '\0' : letter.front();
    field = select->text(6);
    tableId = static_cast<int>(select->integer(7));
    return true;
}

bool PrViewer::getTextFileInfo(int tableId, TextFileInfo& info) {
    if (auto ready = m_impl->requireTable(tableId); !ready)
        return m_impl->fail(ready.error());
    auto select = m_impl->boundRow("SELECT file_path, file_delimiter, file_header, file_encoding, file_size "
                                   "FROM run_table WHERE run = ?1 AND table_id = ?2 AND file_path IS NOT NULL",
                                   {m_impl->run, tableId}, {"The table was not read from a text file."});
    if (!select)
        return m_impl->fail(select.error());
    info.path = select->text(0);
    std::string_view delimiter = select->text(1);
    info.delimiter = delimiter.empty() ? ',' : delimiter.front();
    info.hasHeader = select->integer(2) != 0;
    info.encoding = select->text(3);
    info.size = select->integer(4);
    return true;
}

ProfileCursorHandle PrViewer::getTextFileFieldInfo(int tableId) {
    static const Query kQuery("getTextFileFieldInfo", kFieldsOfTable);
    TextFileInfo ignored;
    if (!getTextFileInfo(tableId, ignored))
        return nullptr;
    return m_impl->open({}, kQuery, {m_impl->run, tableId});
}

ProfileCursorHandle PrViewer::getGlobalCollections() {
    static const Query kQuery("getGlobalCollections", "FROM collection c ORDER BY c.name, c.id");
    return m_impl->open(m_impl->requireSession(), kQuery, {});
}

ProfileCursorHandle PrViewer::getGlobalCollFieldList(int collectionId) {
    static const Query kQuery("getGlobalCollFieldList", kFieldsOfCollection);
    return m_impl->open(m_impl->requireExisting(kFindCollection, collectionId, "collection"), kQuery,
                        {m_impl->run, collectionId});
}

ProfileCursorHandle PrViewer::getGlobalCollFieldListPKR(int collectionId) {
    static const Query kQuery("getGlobalCollFieldListPKR", kFieldsOfCollection);
    return m_impl->open(m_impl->requireExisting(kFindCollection, collectionId, "collection"), kQuery,
                        {m_impl->run, collectionId});
}

ProfileCursorHandle PrViewer::getGlobalCollForTable(int tableId) {
    static const Query kQuery("getGlobalCollForTable", "FROM field f JOIN collection_field m ON m.field = f.id "
                                                       "JOIN collection c ON c.id = m.collection WHERE f.table_id = ?1 "
                                                       "ORDER BY f.id, c.name, c.id");
    return m_impl->open(m_impl->requireExisting("SELECT 1 FROM profiled_table WHERE id = ?1", tableId, "table"), kQuery,
                        {tableId});
}

bool PrViewer::refreshGlobalCollForTable(int tableId) {
    if (auto ready = m_impl->requireSession(); !ready)
        return m_impl->fail(ready.error());
    if (auto exists = repository::requireTable(m_impl->connection(), tableId); !exists)
        return m_impl->fail(exists.error());
    // Usually nothing is stale; then a read-only repository must not fail.
    auto stale = repository::hasStaleFields(m_impl->connection(), tableId);
    if (!stale)
        return m_impl->fail(stale.error());
    if (!*stale)
        return true;
    return m_impl->change(
        [=](sql::Connection& connection) { return repository::removeStaleFields(connection, tableId); });
}

bool PrViewer::createGlobalCollFieldMapping(int collectionId, int fieldId) {
    return m_impl->change([=](sql::Connection& connection) -> Status {
        if (auto exists = repository::requireCollection(connection, collectionId); !exists)
            return exists;
        if (auto exists = repository::requireField(connection, fieldId); !exists)
            return exists;
        auto holds = repository::collectionHolds(connection, collectionId, fieldId);
        if (!holds)
            return holds.error();
        if (*holds)
            return Error{"The collection has this field already."};
        return repository::addToCollection(connection, collectionId, fieldId);
    });
}

int PrViewer::getNumMetrics() const {
    return static_cast<int>(kMetricCount);
}

KvbString PrViewer::getMetricDescription(int metricId) const {
    const MetricInfo* metric = findMetric(metricId);
    return metric ? KvbString(metric->name) : KvbString();
}

int PrViewer::getFunctionCount() const {
    return static_cast<int>(expression::functions().size());
}

bool PrViewer::getFunctionInfo(int index, KvbString& name, KvbString& parameterTypes, char& returnType,
                               KvbString& description, int& count1, int& count2) {
    if (index < 0 || index >= getFunctionCount())
        return m_impl->fail(noSuch("function", index));
    const expression::Function& function = expression::functions()[static_cast<std::size_t>(index)];
    name = function.name;
    parameterTypes = function.parameters;
    returnType = function.result;
    description = function.description;
    count1 = function.minimum;
    count2 = function.maximum;
    return true;
}

KvbString PrViewer::getAbbreviatedPattern(const KvbString& pattern) const {
    return pattern.isNull() ? KvbString() : KvbString(pattern::shortPattern(pattern.view()));
}

} // namespace tavix
