#pragma once

#include "report/FieldRecord.h"
#include "report/ReportSelection.h"

#include <optional>
#include <string>

namespace tavix {

/// What a view and its tabs show: a table, a collection, or one field of either, in the current run.
struct ReportSubject {
    ReportSelection selection;
    /// The selected table, or the one to which a collection's field belongs; its id is -1 for a collection itself.
    TableIdentity table;
    /// When a field is selected and the current run has it.
    std::optional<FieldRecord> field;
};

/// Whether they show the same object, whatever the run.
[[nodiscard]] inline bool isSameObject(const ReportSelection& a, const ReportSelection& b) {
    return a.kind == b.kind && a.id == b.id && a.table.id == b.table.id && a.fieldId == b.fieldId;
}

} // namespace tavix
