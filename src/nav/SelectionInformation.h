#pragma once

#include "base/Result.h"
#include "report/FieldRecords.h"
#include "report/ReportSelection.h"

#include <string>

namespace tavix {

class PrViewer;

/// Finds out what the information text of a selection needs.
class SelectionInformation {
  public:
    /// The information text of the selected table or field; "" when neither is selected.
    [[nodiscard]] Result<std::string> TextOf(PrViewer& viewer, const ReportSelection& selection);
    /// To be called when another report or run was loaded.
    void Forget() { m_records.Forget(); }

  private:
    FieldRecords m_records;
};

} // namespace tavix
