#include "nav/SelectionInformation.h"

#include "access/PrViewer.h"
#include "base/Metrics.h"
#include "nav/InformationText.h"

namespace tavix {

Result<std::string> SelectionInformation::TextOf(PrViewer& viewer, const ReportSelection& selection) {
    if (selection.fieldId == -1) {
        const bool isTable = selection.kind == ReportSelection::Kind::Table;
        return isTable ? informationText(selection.table) : std::string();
    }
    const Result<const FieldRecord*> field = m_records.Find(viewer, selection);
    if (!field)
        return field.error();
    const Result<TableIdentity> table = m_records.TableOf(viewer, selection);
    if (!table)
        return table.error();
    const auto metric = [&field](MetricId id) { return (*field)->metrics[static_cast<std::size_t>(id)].str(); };
    return informationText(*table, {(*field)->name, metric(MetricId::DefinedType), metric(MetricId::DefinedLength)});
}

} // namespace tavix
