#include "tabs/ui/CListWithDetails.h"

#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/ui/LowerLists.h"

namespace tavix {

CListWithDetails::CListWithDetails(const char* name, const std::vector<const char*>& details, CViewSite& site,
                                   const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab(name, site, subject, isTornOff, parent), m_lower(new LowerLists(details)) {
    AddBelow(*m_lower, &m_lower->Grid(details.size() - 1));
    connect(&Grid(), &CUGCtrl::CurrentRowChanged, this, &CListWithDetails::ShowDetails);
}

// The grids must not fetch rows while they are being destroyed.
CListWithDetails::~CListWithDetails() {
    Grid().disconnect(this);
    for (std::size_t list = 0; list < m_details.size(); ++list)
        m_lower->Grid(list).SetSource(nullptr);
}

void CListWithDetails::TakeDetails(std::unique_ptr<ListRows> rows) {
    m_lower->Grid(m_details.size()).SetSource(rows.get());
    m_details.push_back(std::move(rows));
}

bool CListWithDetails::RefillsOn(RefreshHint hint) const {
    return CListTab::RefillsOn(hint) || hint == RefreshHint::HistoryDeleted || hint == RefreshHint::AlertsChanged;
}

void CListWithDetails::RowsChanged() {
    m_lower->SetListFont(Grid().font());
    if (Grid().GetCurrentRow() < 0)
        Grid().SelectRow(0);
    ShowDetails(Grid().GetCurrentRow());
}

void CListWithDetails::ShowDetails(std::int64_t row) {
    PrViewer* viewer = Site().GetTavixDoc().GetViewer();
    if (viewer && row >= 0 && row < GetRowCount()) {
        FillDetails(*viewer, row);
    } else {
        for (const std::unique_ptr<ListRows>& rows : m_details)
            rows->Clear();
        NoDetails();
    }
    for (std::size_t list = 0; list < m_details.size(); ++list)
        m_lower->Grid(list).SourceChanged();
}

} // namespace tavix
