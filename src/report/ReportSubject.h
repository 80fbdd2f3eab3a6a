#pragma once

#include "report/FieldRecord.h"
#include "report/ReportSelection.h"

#include <optional>
#include <string>

namespace tavix {

/// The subject of a view and its tabs: a table, a collection, or a field of either, in the current run.
struct ReportSubject {
    ReportSelection selection;
    /// The selected table, or the one to which a collection's field belongs; its id is -1 for a collection itself.
    TableIdentity table;
    /// Set when a field is selected that the current run has.
    std::optional<FieldRecord> field;
};

/// Whether both select the same object, possibly in different runs.
[[nodiscard]] inline bool isSameObject(const ReportSelection& a, const ReportSelection& b) {
    return a.kind == b.kind && a.id == b.id && a.table.id == b.table.id && a.fieldId == b.fieldId;
}

} // namespace tavix
