#include "tabs/ui/CTabCustMet.h"

#include "alert/ui/AlertActions.h"
#include "base/LibraryDate.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"

namespace tavix {

CTabCustMet::CTabCustMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListWithDetails("Custom Metrics", {"History of the metric"}, site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<CustomMetricRows>())),
      m_history(ShowBelow(std::make_unique<CustomMetricHistoryRows>(userLocale()))) {
    (new AlertActions(site, Grid(), [this] { return CurrentFigure(); }))->AddMenuToList();
}

void CTabCustMet::SelectMetric(int metricId) {
    Grid().SelectRow(m_rows.FindMetric(metricId));
}

AlertTarget CTabCustMet::CurrentFigure() const {
    AlertTarget target;
    const std::int64_t row = Grid().GetCurrentRow();
    if (row < 0 || row >= m_rows.GetRowCount())
        return target;
    target.figure.emplace();
    target.figure->table = Subject().table.id;
    target.figure->subject = AlertSubject::CustomMetric;
    target.figure->watched = m_rows.GetMetric(row);
    target.alerts = m_rows.GetAlerts(row);
    return target;
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
