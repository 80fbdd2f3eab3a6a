#include "tabs/ui/CTabCustMet.h"

#include "base/LibraryDate.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"

namespace tavix {

CTabCustMet::CTabCustMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListWithDetails("Custom Metrics", {"History of the metric"}, site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<CustomMetricRows>())),
      m_history(ShowBelow(std::make_unique<CustomMetricHistoryRows>(userLocale()))) {}

void CTabCustMet::SelectMetric(int metricId) {
    Grid().SelectRow(m_rows.FindMetric(metricId));
}

std::string CTabCustMet::GetObstacle() const {
    return obstacleOfCollection(Subject(), "custom metrics");
}

bool CTabCustMet::FillRows(PrViewer& viewer) {
    m_rows.SetAlerts({Site().GetTavixDoc().GetAlerts(), Subject().table});
    return m_rows.Fill(viewer, Subject().table.id);
}

void CTabCustMet::FillDetails(PrViewer& viewer, std::int64_t row) {
    if (!m_history.Fill(viewer, m_rows.GetKey(row)))
        WarnSoon(m_history.GetErrorText());
}

} // namespace tavix
