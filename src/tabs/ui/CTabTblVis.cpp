#include "tabs/ui/CTabTblVis.h"

#include "tabs/ChartRows.h"

namespace tavix {

CTabTblVis::CTabTblVis(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Visualizations", site, subject, isTornOff, parent), m_rows(ShowRows(std::make_unique<ChartRows>())) {}

std::string CTabTblVis::GetObstacle() const {
    return ObstacleOfCollection("visualizations");
}

bool CTabTblVis::FillRows(PrViewer& viewer) {
    return m_rows.Fill(viewer, Subject().table.id);
}

} // namespace tavix
