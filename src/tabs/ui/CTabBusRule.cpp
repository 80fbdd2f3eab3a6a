#include "tabs/ui/CTabBusRule.h"

#include "base/LibraryDate.h"
#include "doc/CTavixDoc.h"
#include "doc/CountText.h"
#include "grid/ui/CUGCtrl.h"
#include "tabs/ui/LowerLists.h"

#include <QAction>

namespace tavix {

namespace {

constexpr std::size_t kHistory = 0;
constexpr std::size_t kLog = 1;
constexpr const char* kLogHeading = "Rows that violate the rule";

// Of a rule that many rows violate the run keeps the first ones.
std::string logHeading(const BusinessRuleRows::Rule& rule) {
    if (rule.failed == 0)
        return "No row violates the rule";
    std::string heading = kLogHeading;
    if (rule.logged < rule.failed)
        heading += ": the first " + groupedCount(rule.logged) + " of " + groupedCount(rule.failed);
    return heading;
}

} // namespace

CTabBusRule::CTabBusRule(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent)
    : CListTab("Business Rules", site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<BusinessRuleRows>())),
      m_history(userLocale()),
      m_lower(new LowerLists({"History of the rule", kLogHeading})),
      m_drill(site, *this),
      m_drillThrough(m_drill.MakeAction()) {
    m_lower->Grid(kHistory).SetSource(&m_history);
    m_lower->Grid(kLog).SetSource(&m_log);
    AddBelow(*m_lower, &m_lower->Grid(kLog));
    Grid().addAction(m_drillThrough);
    connect(m_drillThrough, &QAction::triggered, this, &CTabBusRule::OnDrillThrough);
    connect(&Grid(), &CUGCtrl::RowActivated, this, &CTabBusRule::OnDrillThrough);
    connect(&Grid(), &CUGCtrl::CurrentRowChanged, this, &CTabBusRule::ShowDetails);
}

// The grids must not ask for rows while they are torn down.
CTabBusRule::~CTabBusRule() {
    Grid().disconnect(this);
    for (const std::size_t list : {kHistory, kLog})
        m_lower->Grid(list).SetSource(nullptr);
}

bool CTabBusRule::RefillsOn(RefreshHint hint) const {
    return hint == RefreshHint::DocumentReset || hint == RefreshHint::RunLoaded || hint == RefreshHint::OptionsChanged;
}

std::string CTabBusRule::GetObstacle() const {
    return Subject().table.id != -1 ? "" : "A collection has no business rules of its own; its tables may have some.";
}

bool CTabBusRule::FillRows(PrViewer& viewer) {
    return m_rows.Fill(viewer, Subject().table.id);
}

void CTabBusRule::RowsChanged() {
    m_lower->SetListFont(Grid().font());
    if (Grid().GetCurrentRow() < 0)
        Grid().SelectRow(0);
    ShowDetails(Grid().GetCurrentRow());
}

bool CTabBusRule::CanDrillThrough() const {
    const std::int64_t row = Grid().GetCurrentRow();
    return m_drill.IsOffered() && row >= 0 && row < m_rows.GetRowCount();
}

void CTabBusRule::OnDrillThrough() {
    if (!CanDrillThrough())
        return;
    const std::int64_t row = Grid().GetCurrentRow();
    m_drill.OpenRule(m_rows.GetRule(row), m_rows.GetCell(0, row).text);
}

void CTabBusRule::ShowDetails(std::int64_t row) {
    m_drillThrough->setEnabled(CanDrillThrough());
    PrViewer* viewer = Site().GetTavixDoc().GetViewer();
    m_lower->SetHeading(kLog, kLogHeading);
    if (!viewer || row < 0 || row >= m_rows.GetRowCount()) {
        m_history.Clear();
        m_log.Clear();
    } else {
        const BusinessRuleRows::Rule& rule = m_rows.GetRule(row);
        if (!m_history.Fill(*viewer, rule.key))
            WarnSoon(m_history.GetErrorText());
        if (!m_log.Fill(*viewer, rule.id))
            WarnSoon(m_log.GetErrorText());
        m_lower->SetHeading(kLog, logHeading(rule));
    }
    m_lower->Grid(kHistory).SourceChanged();
    m_lower->Grid(kLog).SourceChanged();
}

} // namespace tavix
