#pragma once

#include "base/Result.h"
#include "doc/ReportSelection.h"
#include "nav/InformationText.h"

#include <map>
#include <string>

namespace tavix {

class PrViewer;

/// Finds out what the information text of a selection needs. The fields of a table are read with one query and kept
/// for as long as the selection stays in the table.
class SelectionInformation {
  public:
    /// The information text of the selected table or field; "" when neither is selected.
    [[nodiscard]] Result<std::string> TextOf(PrViewer& viewer, const ReportSelection& selection);
    /// To be called when another report or run was loaded.
    void Forget();

  private:
    Status ReadFields(PrViewer& viewer, int tableId);
    [[nodiscard]] Result<TableIdentity> TableOfField(PrViewer& viewer, int fieldId) const;

    int m_tableId = -1; ///< whose fields are kept
    std::map<int, FieldInformation> m_fields;
};

} // namespace tavix
