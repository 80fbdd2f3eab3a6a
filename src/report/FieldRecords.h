#pragma once

#include "base/Result.h"
#include "report/FieldRecord.h"
#include "report/ReportSelection.h"

#include <map>
#include <string>

namespace tavix {

class PrViewer;

/// The fields of the selected table or collection. They are read with one query and kept while the selection stays in
/// that table or collection.
class FieldRecords {
  public:
    /// The record of the selected field; valid until the next call. An error when the run does not have it.
    [[nodiscard]] Result<const FieldRecord*> Find(PrViewer& viewer, const ReportSelection& selection);
    /// The table of the selected field, for a field of a collection in the run that its metrics come from, which may be
    /// a run of another report. Has names only when no run has the field.
    [[nodiscard]] Result<TableIdentity> TableOf(PrViewer& viewer, const ReportSelection& selection);
    /// Call it when another report or run was loaded, or collections have changed.
    void Forget();

  private:
    Status Read(PrViewer& viewer, const ReportSelection& selection);

    ReportSelection::Kind m_kind = ReportSelection::Kind::Nothing; ///< of the kept fields
    int m_id = -1;                                                 ///< of the table or collection
    std::map<int, FieldRecord> m_fields;
    TableIdentity m_table;   ///< of the collection's field that was asked for last
    int m_tableOfField = -1; ///< that field
};

} // namespace tavix
