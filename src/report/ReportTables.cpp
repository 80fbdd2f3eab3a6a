#include "report/ReportTables.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "report/CheckedCursor.h"
#include "report/FitReadings.h"

#include <algorithm>

namespace tavix {

namespace {

TableIdentity readTable(const ProfileCursor& cursor, const std::string& dataSourceName) {
    using namespace layout;
    TableIdentity table;
    table.kind = tableKindOf(textAt(cursor, TableKindLetter)).value_or(TableKind::Plain);
    table.id = cursor.getColumnInt(TableId);
    table.dataSource = dataSourceName;
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
    table.damagedRecords = int64Or(cursor, TableDamagedRecords, 0);
    table.fields = int64Or(cursor, TableFields, 0);
    table.isSample = cursor.getColumnInt(TableIsSample) != 0;
    return table;
}

NamedField readFieldName(const ProfileCursor& cursor) {
    return {cursor.getColumnInt(layout::FieldId), textAt(cursor, layout::FieldName),
            textAt(cursor, layout::FieldTypeCode)};
}

FieldRecord readField(const ProfileCursor& cursor, int firstMetric) {
    using namespace layout;
    FieldRecord field;
    field.id = cursor.getColumnInt(FieldId);
    field.name = textAt(cursor, layout::FieldName);
    field.typeCode = textAt(cursor, FieldTypeCode);
    for (std::size_t i = 0; i < field.metrics.size(); ++i)
        field.metrics[i] = cursor.getColumnValue(firstMetric + static_cast<int>(i));
    field.freqCount = int64Or(cursor, tailColumn(firstMetric, TailFreqCount), 0);
    field.patternCount = int64Or(cursor, tailColumn(firstMetric, TailPatternCount), 0);
    field.tableId = cursor.getColumnInt(tailColumn(firstMetric, TailTableId));
    field.quantileRule = textAt(cursor, tailColumn(firstMetric, TailQuantileRule));
    return field;
}

} // namespace

std::vector<RunInfo> readRuns(PrViewer& viewer) {
    std::vector<RunInfo> runs;
    const ProfileCursorHandle rows = checked(viewer, viewer.getJobs());
    while (rows->next())
        runs.push_back({rows->getColumnInt(layout::JobRunId), rows->getColumnDouble(layout::JobDate),
                        textAt(*rows, layout::JobDescription), int64Or(*rows, layout::JobTables, 0),
                        int64Or(*rows, layout::JobRecords, 0)});
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
            readTables(viewer, sources->getColumnInt(layout::DsnId), textAt(*sources, layout::DsnName));
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

const TableIdentity* findBaseTable(const std::vector<TableIdentity>& tables, const TableIdentity& filtered) {
    const auto base = std::find_if(tables.begin(), tables.end(), [&](const TableIdentity& other) {
        return other.kind != TableKind::Filter && other.dataSource == filtered.dataSource &&
               other.catalog == filtered.catalog && other.schema == filtered.schema && other.name == filtered.name &&
               other.query == filtered.query;
    });
    return base == tables.end() ? nullptr : &*base;
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
    FitReadings fits(viewer);
    while (rows->next()) {
        fields.push_back(readField(*rows, layout::kFieldListMetrics));
        fields.back().fits = fits.Of(tableId, fields.back().id);
    }
    return fields;
}

std::vector<FieldRecord> readCollectionFields(PrViewer& viewer, int collectionId) {
    std::vector<FieldRecord> fields;
    const ProfileCursorHandle rows = checked(viewer, viewer.getGlobalCollFieldList(collectionId));
    FitReadings fits(viewer);
    while (rows->next()) {
        // A field of the collection that no run has is listed without a type.
        if (rows->isColumnNull(layout::FieldTypeCode))
            continue;
        fields.push_back(readField(*rows, layout::kCollectionFieldListMetrics));
        fields.back().fits = fits.Of(fields.back().tableId, fields.back().id);
    }
    return fields;
}

} // namespace tavix
