#include "tabs/ui/CTabAlerts.h"

#include "tabs/TableAlertRows.h"

namespace tavix {

CTabAlerts::CTabAlerts(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Alerts", site, subject, isTornOff, parent), m_rows(ShowRows(std::make_unique<TableAlertRows>())) {}

std::string CTabAlerts::GetObstacle() const {
    return ObstacleOfCollection("alerts");
}

bool CTabAlerts::FillRows(PrViewer& viewer) {
    return m_rows.Fill(viewer, Subject().table);
}

} // namespace tavix
