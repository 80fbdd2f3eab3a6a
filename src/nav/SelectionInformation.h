#pragma once

#include "base/Result.h"
#include "report/FieldRecords.h"
#include "report/ReportSelection.h"

#include <string>

namespace tavix {

class PrViewer;

/// Composes the information text of a selection from the repository.
class SelectionInformation {
  public:
    /// The information text of the selected table or field; "" when neither is selected.
    [[nodiscard]] Result<std::string> TextOf(PrViewer& viewer, const ReportSelection& selection);
    /// Call it when another report or run was loaded.
    void Forget() { m_records.Forget(); }

  private:
    FieldRecords m_records;
};

} // namespace tavix
