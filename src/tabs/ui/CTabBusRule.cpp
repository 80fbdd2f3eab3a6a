#include "tabs/ui/CTabBusRule.h"

#include "alert/ui/AlertActions.h"
#include "base/LibraryDate.h"
#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"
#include "grid/ui/CUGCtrl.h"
#include "report/CountText.h"
#include "tabs/ui/CSuggestDlg.h"
#include "tabs/ui/LinkButton.h"
#include "tabs/ui/LowerLists.h"

#include <QAction>
#include <QHBoxLayout>

namespace tavix {

namespace {

/// The index of the row log among the lists below.
constexpr std::size_t kLog = 1;
constexpr int kMargin = 12;
constexpr int kGap = 4;
constexpr const char* kLogHeading = "Rows that violate the rule";

// The run keeps only the first rows of a rule that many rows violate.
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
    : CListWithDetails("Business Rules", {"History of the rule", kLogHeading}, site, subject, isTornOff, parent),
      m_rows(ShowRows(std::make_unique<BusinessRuleRows>())),
      m_history(ShowBelow(std::make_unique<BusinessRuleHistoryRows>(userLocale()))),
      m_log(ShowBelow(std::make_unique<RuleLogRows>())),
      m_drill(site, *this),
      m_drillThrough(m_drill.MakeAction()) {
    Grid().addAction(m_drillThrough);
    connect(m_drillThrough, &QAction::triggered, this, &CTabBusRule::OnDrillThrough);
    connect(&Grid(), &CUGCtrl::RowActivated, this, &CTabBusRule::OnDrillThrough);
    (new AlertActions(site, Grid(), [this] { return CurrentFigure(); }))->AddMenuToList();
    auto* suggest = new QAction(tr("&Suggest Rules..."), this);
    Grid().addAction(suggest);
    connect(suggest, &QAction::triggered, this, &CTabBusRule::Suggest);
    m_footer = new QWidget(this);
    auto* button = new LinkButton(m_footer);
    button->setObjectName(QStringLiteral("suggestRules"));
    button->setText(tr("suggest rules..."));
    button->setToolTip(tr("Rules that the figures of the runs suggest, as a job file"));
    connect(button, &QPushButton::clicked, this, &CTabBusRule::Suggest);
    auto* line = new QHBoxLayout(m_footer);
    line->setContentsMargins(kMargin, kGap, kMargin, kGap);
    line->addWidget(button);
    line->addStretch(1);
    AddFooter(*m_footer);
    m_suggest = button;
}

void CTabBusRule::Suggest() {
    CSuggestDlg::Show(Site(), Subject().table.id, toQString(Subject().table.displayName()), *window());
}

QWidget* CTabBusRule::GetLastTabStop() {
    return m_footer->isHidden() ? CListWithDetails::GetLastTabStop() : m_suggest;
}

void CTabBusRule::PrepareFill() {
    m_footer->setVisible(Site().GetTavixDoc().GetViewer() && Subject().table.id != -1);
}

void CTabBusRule::SelectRule(int ruleId) {
    Grid().SelectRow(m_rows.FindRule(ruleId));
}

AlertTarget CTabBusRule::CurrentFigure() const {
    AlertTarget target;
    const std::int64_t row = Grid().GetCurrentRow();
    if (row < 0 || row >= m_rows.GetRowCount())
        return target;
    target.figure.emplace();
    target.figure->table = Subject().table.id;
    target.figure->subject = AlertSubject::BusinessRule;
    target.figure->watched = m_rows.GetRule(row).id;
    target.alerts = m_rows.GetAlerts(row);
    return target;
}

std::string CTabBusRule::GetObstacle() const {
    return obstacleOfCollection(Subject(), "business rules");
}

bool CTabBusRule::FillRows(PrViewer& viewer) {
    m_rows.SetAlerts({Site().GetTavixDoc().GetAlerts(), Subject().table});
    return m_rows.Fill(viewer, Subject().table.id);
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

void CTabBusRule::FillDetails(PrViewer& viewer, std::int64_t row) {
    const BusinessRuleRows::Rule& rule = m_rows.GetRule(row);
    if (!m_history.Fill(viewer, rule.key))
        WarnSoon(m_history.GetErrorText());
    if (!m_log.Fill(viewer, rule.id))
        WarnSoon(m_log.GetErrorText());
    Lower().SetHeading(kLog, logHeading(rule));
    m_drillThrough->setEnabled(CanDrillThrough());
}

void CTabBusRule::NoDetails() {
    Lower().SetHeading(kLog, kLogHeading);
    m_drillThrough->setEnabled(false);
}

} // namespace tavix
