#include "tabs/ui/CTabTblVis.h"

#include "tabs/ChartRows.h"

namespace tavix {

CTabTblVis::CTabTblVis(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Visualizations", site, subject, isTornOff, parent), m_rows(ShowRows(std::make_unique<ChartRows>())) {}

bool CTabTblVis::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded || hint == RefreshHint::OptionsChanged;
}

std::string CTabTblVis::GetObstacle() const {
    return Subject().table.id != -1 ? "" : "A collection has no visualizations of its own; its tables may have some.";
}

bool CTabTblVis::FillRows(PrViewer& viewer) {
    return m_rows.Fill(viewer, Subject().table.id);
}

} // namespace tavix
