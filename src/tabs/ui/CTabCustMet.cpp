#include "tabs/ui/CTabCustMet.h"

#include "base/LibraryDate.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/ui/LowerLists.h"

namespace tavix {

CTabCustMet::CTabCustMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Custom Metrics", site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<CustomMetricRows>())),
      m_history(userLocale()),
      m_lower(new LowerLists({"History of the metric"})) {
    m_lower->Grid(0).SetSource(&m_history);
    AddBelow(*m_lower, &m_lower->Grid(0));
    connect(&Grid(), &CUGCtrl::CurrentRowChanged, this, &CTabCustMet::ShowHistory);
}

// The grids must not ask for rows while they are torn down.
CTabCustMet::~CTabCustMet() {
    Grid().disconnect(this);
    m_lower->Grid(0).SetSource(nullptr);
}

bool CTabCustMet::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded || hint == RefreshHint::OptionsChanged;
}

std::string CTabCustMet::GetObstacle() const {
    return Subject().table.id != -1 ? "" : "A collection has no custom metrics of its own; its tables may have some.";
}

bool CTabCustMet::FillRows(PrViewer& viewer) {
    return m_rows.Fill(viewer, Subject().table.id);
}

void CTabCustMet::RowsChanged() {
    m_lower->SetListFont(Grid().font());
    if (Grid().GetCurrentRow() < 0)
        Grid().SelectRow(0);
    ShowHistory(Grid().GetCurrentRow());
}

void CTabCustMet::ShowHistory(std::int64_t row) {
    PrViewer* viewer = Site().GetTavixDoc().GetViewer();
    if (!viewer || row < 0 || row >= m_rows.GetRowCount())
        m_history.Clear();
    else if (!m_history.Fill(*viewer, m_rows.GetKey(row)))
        WarnSoon(m_history.GetErrorText());
    m_lower->Grid(0).SourceChanged();
}

} // namespace tavix
