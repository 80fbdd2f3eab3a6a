#include "tabs/ui/CTabPKFK.h"

#include "tabs/PkFkRows.h"

namespace tavix {

CTabPKFK::CTabPKFK(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Primary Key/Foreign Key Analyses", site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<PkFkRows>())) {}

std::string CTabPKFK::GetObstacle() const {
    return Subject().selection.fieldId != -1 ? "" : "No field is selected.";
}

bool CTabPKFK::FillRows(PrViewer& viewer) {
    return m_rows.Fill(viewer, Subject().selection.fieldId);
}

} // namespace tavix
