#include "report/FieldRecords.h"

#include "access/PrViewer.h"
#include "base/GenException.h"
#include "report/ReportTables.h"

namespace tavix {

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
        for (FieldRecord& field : isTable ? readFields(viewer, id) : readCollectionFields(viewer, id))
            m_fields.emplace(field.id, std::move(field));
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
    char kind = static_cast<char>(TableKind::Plain);
    int tableId = -1;
    if (!viewer.getFieldInfo(selection.fieldId, source, catalog, schema, table, object, kind, field, tableId))
        return Error{viewer.getErrorString().str()};
    try {
        m_table = readTableOfField(viewer, selection.fieldId, source.str());
    } catch (const GenException& failure) {
        return Error{failure.getText().str()};
    }
    m_tableOfField = selection.fieldId;
    if (m_table.id != -1)
        return m_table;
    m_table.id = tableId;
    m_table.kind = tableKindOf(std::string_view(&kind, 1)).value_or(TableKind::Plain);
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
