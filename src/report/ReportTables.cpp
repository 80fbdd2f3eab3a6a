#include "report/ReportTables.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/NumberText.h"

namespace tavix {

namespace {

ProfileCursorHandle checked(PrViewer& viewer, ProfileCursorHandle cursor) {
    if (!cursor)
        throw GenException(viewer.getErrorString());
    return cursor;
}

std::string text(const ProfileCursor& cursor, int column) {
    return cursor.getColumnValue(column).str();
}

std::int64_t count(const ProfileCursor& cursor, int column, std::int64_t ofNull) {
    return cursor.isColumnNull(column) ? ofNull : parseInteger(text(cursor, column)).value_or(ofNull);
}

TableIdentity readTable(const ProfileCursor& cursor, const std::string& dataSourceName) {
    using namespace layout;
    TableIdentity table;
    table.kind = tableKindOf(text(cursor, TableKindLetter)).value_or(TableKind::Plain);
    table.id = cursor.getColumnInt(TableId);
    table.dataSource = dataSourceName;
    table.catalog = text(cursor, TableCatalog);
    table.schema = text(cursor, TableSchema);
    table.name = text(cursor, TableName);
    table.objectName = text(cursor, TableObjectName);
    table.baseTable = text(cursor, TableBase);
    table.query = text(cursor, TableQuery);
    table.filter = text(cursor, TableFilter);
    if (table.filter.empty())
        table.filter = text(cursor, TableAlternateFilter);
    table.totalRecords = count(cursor, TableTotalRecords, -1);
    table.processedRecords = count(cursor, TableProcessedRecords, -1);
    table.damagedRecords = count(cursor, TableDamagedRecords, 0);
    table.fields = count(cursor, TableFields, 0);
    table.isSample = cursor.getColumnInt(TableIsSample) != 0;
    return table;
}

NamedField readFieldName(const ProfileCursor& cursor) {
    return {cursor.getColumnInt(layout::FieldId), text(cursor, layout::FieldName), text(cursor, layout::FieldTypeCode)};
}

FieldRecord readField(const ProfileCursor& cursor, int firstMetric) {
    using namespace layout;
    FieldRecord field;
    field.id = cursor.getColumnInt(FieldId);
    field.name = text(cursor, layout::FieldName);
    field.typeCode = text(cursor, FieldTypeCode);
    for (std::size_t i = 0; i < field.metrics.size(); ++i)
        field.metrics[i] = cursor.getColumnValue(firstMetric + static_cast<int>(i));
    field.freqCount = count(cursor, tailColumn(firstMetric, TailFreqCount), 0);
    field.patternCount = count(cursor, tailColumn(firstMetric, TailPatternCount), 0);
    field.tableId = cursor.getColumnInt(tailColumn(firstMetric, TailTableId));
    field.quantileRule = text(cursor, tailColumn(firstMetric, TailQuantileRule));
    return field;
}

} // namespace

std::vector<RunInfo> readRuns(PrViewer& viewer) {
    std::vector<RunInfo> runs;
    const ProfileCursorHandle rows = checked(viewer, viewer.getJobs());
    while (rows->next())
        runs.push_back({rows->getColumnInt(layout::JobRunId), rows->getColumnDouble(layout::JobDate),
                        text(*rows, layout::JobDescription)});
    return runs;
}

std::vector<TableIdentity> readTables(PrViewer& viewer, int dataSource, const std::string& dataSourceName) {
    std::vector<TableIdentity> tables;
    const ProfileCursorHandle rows = checked(viewer, viewer.getTableList(dataSource));
    while (rows->next())
        tables.push_back(readTable(*rows, dataSourceName));
    return tables;
}

std::vector<TableIdentity> readTables(PrViewer& viewer) {
    std::vector<TableIdentity> all;
    const ProfileCursorHandle sources = checked(viewer, viewer.getDSNList());
    while (sources->next()) {
        std::vector<TableIdentity> tables =
            readTables(viewer, sources->getColumnInt(layout::DsnId), text(*sources, layout::DsnName));
        all.insert(all.end(), std::make_move_iterator(tables.begin()), std::make_move_iterator(tables.end()));
    }
    return all;
}

Result<TableIdentity> findTable(PrViewer& viewer, int tableId, const std::string& dataSourceName) {
    try {
        const ProfileCursorHandle rows = checked(viewer, viewer.getTableList(kAllDataSources));
        while (rows->next()) {
            if (rows->getColumnInt(layout::TableId) == tableId)
                return readTable(*rows, dataSourceName);
        }
        return Error{"The table is not in this run."};
    } catch (const GenException& failure) {
        return Error{failure.getText().str()};
    }
}

TableIdentity readTableOfField(PrViewer& viewer, int fieldId, const std::string& dataSourceName) {
    const ProfileCursorHandle rows = viewer.getTableOfField(fieldId);
    return rows && rows->next() ? readTable(*rows, dataSourceName) : TableIdentity();
}

std::vector<NamedField> readFieldNames(PrViewer& viewer, int tableId) {
    std::vector<NamedField> fields;
    const ProfileCursorHandle rows = checked(viewer, viewer.getFieldList(tableId));
    while (rows->next())
        fields.push_back(readFieldName(*rows));
    return fields;
}

std::vector<FieldRecord> readFields(PrViewer& viewer, int tableId) {
    std::vector<FieldRecord> fields;
    const ProfileCursorHandle rows = checked(viewer, viewer.getFieldList(tableId));
    while (rows->next())
        fields.push_back(readField(*rows, layout::kFieldListMetrics));
    return fields;
}

std::vector<FieldRecord> readCollectionFields(PrViewer& viewer, int collectionId) {
    std::vector<FieldRecord> fields;
    const ProfileCursorHandle rows = checked(viewer, viewer.getGlobalCollFieldList(collectionId));
    while (rows->next()) {
        // A field of the collection that no run has is listed without a type.
        if (!rows->isColumnNull(layout::FieldTypeCode))
            fields.push_back(readField(*rows, layout::kCollectionFieldListMetrics));
    }
    return fields;
}

} // namespace tavix
