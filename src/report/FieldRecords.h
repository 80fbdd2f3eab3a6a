#pragma once

#include "base/Result.h"
#include "report/FieldRecord.h"
#include "report/ReportSelection.h"

#include <map>
#include <string>

namespace tavix {

class PrViewer;
class ProfileCursor;

/// The table at which a cursor of getTableList stands.
[[nodiscard]] TableIdentity readTable(const ProfileCursor& cursor, const std::string& dataSource);

/// The table with that id as the current run has it. `dataSource` is the name of its data source.
[[nodiscard]] Result<TableIdentity> findTable(PrViewer& viewer, int tableId, const std::string& dataSource);

/// The records of the fields of one table or collection at a time: read with one query, kept for as long as the
/// selection stays in it.
class FieldRecords {
  public:
    /// The record of the selected field; valid until the next call. An error when the run does not have it.
    [[nodiscard]] Result<const FieldRecord*> Find(PrViewer& viewer, const ReportSelection& selection);
    /// The table to which the selected field belongs; of a collection's field as the run says whose figures are the
    /// field's, which may be one of another report. When no run has the field, the names alone.
    [[nodiscard]] Result<TableIdentity> TableOf(PrViewer& viewer, const ReportSelection& selection);
    /// To be called when another report or run was loaded, or collections have changed.
    void Forget();

  private:
    Status Read(PrViewer& viewer, const ReportSelection& selection);

    ReportSelection::Kind m_kind = ReportSelection::Kind::Nothing; ///< of what is kept
    int m_id = -1;                                                 ///< of the table or collection
    std::map<int, FieldRecord> m_fields;
    TableIdentity m_table;   ///< of the last field of a collection
    int m_tableOfField = -1; ///< which field that is
};

} // namespace tavix
