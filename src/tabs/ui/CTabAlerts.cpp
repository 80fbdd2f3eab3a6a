#include "tabs/ui/CTabAlerts.h"

#include "tabs/TableAlertRows.h"

namespace tavix {

CTabAlerts::CTabAlerts(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Alerts", site, subject, isTornOff, parent), m_rows(ShowRows(std::make_unique<TableAlertRows>())) {}

bool CTabAlerts::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded || hint == RefreshHint::OptionsChanged;
}

std::string CTabAlerts::GetObstacle() const {
    return Subject().table.id != -1 ? "" : "A collection has no alerts of its own; its tables may have some.";
}

bool CTabAlerts::FillRows(PrViewer& viewer) {
    return m_rows.Fill(viewer, Subject().table);
}

} // namespace tavix
