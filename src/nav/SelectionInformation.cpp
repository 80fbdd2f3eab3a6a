#include "nav/SelectionInformation.h"

#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/Metrics.h"
#include "nav/TreeContents.h"

namespace tavix {

namespace {

std::string metric(const ProfileCursor& fields, MetricId id) {
    return fields.getColumnValue(layout::kFieldListMetrics + static_cast<int>(id)).str();
}

} // namespace

void SelectionInformation::Forget() {
    m_tableId = -1;
    m_fields.clear();
}

Status SelectionInformation::ReadFields(PrViewer& viewer, int tableId) {
    if (m_tableId == tableId)
        return {};
    Forget();
    const ProfileCursorHandle rows = viewer.getFieldList(tableId);
    if (!rows)
        return Error{viewer.getErrorString().str()};
    while (rows->next()) {
        m_fields[rows->getColumnInt(layout::FieldId)] = {rows->getColumnValue(layout::FieldName).str(),
                                                         metric(*rows, MetricId::DefinedType),
                                                         metric(*rows, MetricId::DefinedLength)};
    }
    m_tableId = tableId;
    return {};
}

Result<TableIdentity> SelectionInformation::TableOfField(PrViewer& viewer, int fieldId) const {
    KvbString source;
    KvbString catalog;
    KvbString schema;
    KvbString table;
    KvbString object;
    KvbString field;
    char kind = 'Y';
    int tableId = -1;
    if (!viewer.getFieldInfo(fieldId, source, catalog, schema, table, object, kind, field, tableId))
        return Error{viewer.getErrorString().str()};
    const ProfileCursorHandle rows = viewer.getTableList(-1);
    while (rows && rows->next()) {
        if (rows->getColumnInt(layout::TableId) == tableId)
            return readTable(*rows, source.str());
    }
    return Error{rows ? "The table of the field is not in this run." : viewer.getErrorString().str()};
}

Result<std::string> SelectionInformation::TextOf(PrViewer& viewer, const ReportSelection& selection) {
    const bool isTable = selection.kind == ReportSelection::Kind::Table;
    if (isTable && selection.fieldId == -1)
        return informationText(selection.table);
    if (selection.fieldId == -1)
        return std::string();
    try {
        const Result<TableIdentity> table =
            isTable ? Result<TableIdentity>(selection.table) : TableOfField(viewer, selection.fieldId);
        if (!table)
            return table.error();
        if (const Status read = ReadFields(viewer, table->id); !read)
            return read.error();
        const auto field = m_fields.find(selection.fieldId);
        if (field == m_fields.end())
            return Error{"The field is not in this run."};
        return informationText(*table, field->second);
    } catch (const GenException& failure) {
        Forget();
        return Error{failure.getText().str()};
    }
}

} // namespace tavix
