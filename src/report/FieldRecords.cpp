#include "report/FieldRecords.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"

namespace tavix {

namespace {

FieldRecord readField(const ProfileCursor& cursor, int firstMetric) {
    using namespace layout;
    FieldRecord field;
    field.id = cursor.getColumnInt(FieldId);
    field.name = textAt(cursor, FieldName);
    field.typeCode = textAt(cursor, FieldTypeCode);
    for (std::size_t i = 0; i < field.metrics.size(); ++i)
        field.metrics[i] = cursor.getColumnValue(firstMetric + static_cast<int>(i));
    field.freqCount = cursor.getColumnInt64(tailColumn(firstMetric, TailFreqCount));
    field.patternCount = cursor.getColumnInt64(tailColumn(firstMetric, TailPatternCount));
    field.tableId = cursor.getColumnInt(tailColumn(firstMetric, TailTableId));
    field.quantileRule = textAt(cursor, tailColumn(firstMetric, TailQuantileRule));
    return field;
}

// A field that a collection holds and no run has has no figures at all.
bool isMeasured(const ProfileCursor& cursor) {
    return !cursor.isColumnNull(layout::FieldTypeCode);
}

} // namespace

TableIdentity readTable(const ProfileCursor& cursor, const std::string& dataSource) {
    using namespace layout;
    TableIdentity table;
    const std::string kind = textAt(cursor, TableKindLetter);
    table.kind = kind.empty() ? 'Y' : kind.front();
    table.id = cursor.getColumnInt(TableId);
    table.dataSource = dataSource;
    table.catalog = textAt(cursor, TableCatalog);
    table.schema = textAt(cursor, TableSchema);
    table.name = textAt(cursor, TableName);
    table.objectName = textAt(cursor, TableObjectName);
    table.baseTable = textAt(cursor, TableBase);
    table.query = textAt(cursor, TableQuery);
    table.filter = textAt(cursor, TableFilter);
    if (table.filter.empty())
        table.filter = textAt(cursor, TableAlternateFilter);
    table.totalRecords = int64Or(cursor, TableTotalRecords, -1);
    table.processedRecords = int64Or(cursor, TableProcessedRecords, -1);
    return table;
}

Result<TableIdentity> findTable(PrViewer& viewer, int tableId, const std::string& dataSource) {
    try {
        const ProfileCursorHandle rows = viewer.getTableList(-1);
        while (rows && rows->next()) {
            if (rows->getColumnInt(layout::TableId) == tableId)
                return readTable(*rows, dataSource);
        }
        return Error{rows ? "The table is not in this run." : viewer.getErrorString().str()};
    } catch (const GenException& failure) {
        return Error{failure.getText().str()};
    }
}

void FieldRecords::Forget() {
    m_kind = ReportSelection::Kind::Nothing;
    m_id = -1;
    m_fields.clear();
    m_table = {};
    m_tableOfField = -1;
}

Status FieldRecords::Read(PrViewer& viewer, const ReportSelection& selection) {
    const bool isTable = selection.kind == ReportSelection::Kind::Table;
    const int id = isTable ? selection.table.id : selection.id;
    if (m_kind == selection.kind && m_id == id)
        return {};
    Forget();
    try {
        const ProfileCursorHandle rows = isTable ? viewer.getFieldList(id) : viewer.getGlobalCollFieldList(id);
        if (!rows)
            return Error{viewer.getErrorString().str()};
        const int firstMetric = isTable ? layout::kFieldListMetrics : layout::kCollectionFieldListMetrics;
        while (rows->next()) {
            if (isMeasured(*rows))
                m_fields.emplace(rows->getColumnInt(layout::FieldId), readField(*rows, firstMetric));
        }
    } catch (const GenException& failure) {
        Forget();
        return Error{failure.getText().str()};
    }
    m_kind = selection.kind;
    m_id = id;
    return {};
}

Result<const FieldRecord*> FieldRecords::Find(PrViewer& viewer, const ReportSelection& selection) {
    const bool hasFields =
        selection.kind == ReportSelection::Kind::Table || selection.kind == ReportSelection::Kind::Collection;
    if (!hasFields || selection.fieldId == -1)
        return Error{"No field is selected."};
    if (const Status read = Read(viewer, selection); !read)
        return read.error();
    const auto field = m_fields.find(selection.fieldId);
    if (field == m_fields.end())
        return Error{"The field is not in this run."};
    return &field->second;
}

Result<TableIdentity> FieldRecords::TableOf(PrViewer& viewer, const ReportSelection& selection) {
    if (selection.kind == ReportSelection::Kind::Table)
        return selection.table;
    if (m_tableOfField == selection.fieldId)
        return m_table;
    KvbString source;
    KvbString catalog;
    KvbString schema;
    KvbString table;
    KvbString object;
    KvbString field;
    char kind = 'Y';
    int tableId = -1;
    if (!viewer.getFieldInfo(selection.fieldId, source, catalog, schema, table, object, kind, field, tableId))
        return Error{viewer.getErrorString().str()};
    try {
        const ProfileCursorHandle rows = viewer.getTableOfField(selection.fieldId);
        m_table = rows && rows->next() ? readTable(*rows, source.str()) : TableIdentity{};
    } catch (const GenException& failure) {
        return Error{failure.getText().str()};
    }
    m_tableOfField = selection.fieldId;
    if (m_table.id != -1)
        return m_table;
    m_table.id = tableId;
    m_table.kind = kind;
    m_table.dataSource = source.str();
    m_table.catalog = catalog.str();
    m_table.schema = schema.str();
    m_table.name = table.str();
    m_table.objectName = object.str();
    m_table.totalRecords = -1;
    m_table.processedRecords = -1;
    return m_table;
}

} // namespace tavix
