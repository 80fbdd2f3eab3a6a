#include "tabs/ui/CTableView.h"

#include "tabs/ui/CTabAlerts.h"
#include "tabs/ui/CTabBusRule.h"
#include "tabs/ui/CTabCustMet.h"
#include "tabs/ui/CTabStdMet.h"
#include "tabs/ui/CTabTblNotes.h"
#include "tabs/ui/CTabTblVis.h"

#include <array>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CTableView>, 2> kCommands = {{
    {CommandId::AddTableNote, &CTableView::OnAddNote, &CTableView::CanAddNote},
    {CommandId::DetachTabs, &CTableView::OnDetach, &CTableView::CanDetach},
}};

} // namespace

CTableView::CTableView(CViewSite& site, bool isTornOff, QWidget* parent)
    : CReportView(site, ReportPaneKind::Table, isTornOff, parent),
      m_metrics(new CTabStdMet(site, GetSubject(), isTornOff)),
      m_customMetrics(new CTabCustMet(site, GetSubject(), isTornOff)),
      m_rules(new CTabBusRule(site, GetSubject(), isTornOff)),
      m_notes(new CTabTblNotes(site, GetSubject(), isTornOff)) {
    setObjectName(QStringLiteral("tableView"));
    AddTab(m_metrics, "Standard Metrics");
    AddTab(m_customMetrics, "Custom Metrics");
    AddTab(m_rules, "Business Rules");
    AddTab(new CTabAlerts(site, GetSubject(), isTornOff), "Alerts");
    AddTab(new CTabTblVis(site, GetSubject(), isTornOff), "Visualizations");
    AddTab(m_notes, "Notes");
    Start();
}

std::span<const CommandRow<CTableView>> CTableView::CommandRows() {
    return kCommands;
}

void CTableView::OpenStandardMetric(int fieldId, int metricId) {
    SelectTab(StandardMetrics);
    m_metrics->SelectMetric(fieldId, metricId);
}

void CTableView::OpenCustomMetric(int metricId) {
    SelectTab(CustomMetrics);
    m_customMetrics->SelectMetric(metricId);
}

void CTableView::OpenBusinessRule(int ruleId) {
    SelectTab(BusinessRules);
    m_rules->SelectRule(ruleId);
}

bool CTableView::ExecuteCommand(int commandId) {
    return CReportView::ExecuteCommand(commandId) || execute(CommandRows(), *this, commandId);
}

CommandState CTableView::UpdateCommand(int commandId) const {
    const CommandState state = CReportView::UpdateCommand(commandId);
    return state.handled ? state : stateOf(CommandRows(), *this, commandId);
}

bool CTableView::CanAddNote() const {
    return m_notes->CanAddNote();
}

void CTableView::OnAddNote() {
    SelectTab(Notes);
    m_notes->AddNote();
}

void CTableView::OnDetach() {
    Q_EMIT DetachRequested();
}

} // namespace tavix
