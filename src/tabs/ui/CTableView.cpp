#include "tabs/ui/CTableView.h"

#include "tabs/ui/CNotesTab.h"
#include "tabs/ui/CTabAlerts.h"
#include "tabs/ui/CTabBusRule.h"
#include "tabs/ui/CTabChanges.h"
#include "tabs/ui/CTabCustMet.h"
#include "tabs/ui/CTabStdMet.h"
#include "tabs/ui/PlainListTab.h"

#include <array>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CTableView>, 2> kCommands = {{
    {CommandId::AddTableNote, &CTableView::OnAddNote, &CTableView::CanAddNote},
    {CommandId::DetachTabs, &CTableView::OnDetach, &CTableView::CanDetach},
}};

constexpr std::array<TabRow, 7> kTabs = {{
    {CTableView::StandardMetrics, "Standard Metrics", ItemCode::StandardMetrics, &makeTab<CTabStdMet>},
    {CTableView::CustomMetrics, "Custom Metrics", ItemCode::CustomMetrics, &makeTab<CTabCustMet>},
    {CTableView::BusinessRules, "Business Rules", ItemCode::BusinessRules, &makeTab<CTabBusRule>},
    {CTableView::Alerts, "Alerts", ItemCode::Alerts, &makeTab<CTabAlerts>},
    {CTableView::Visualizations, "Visualizations", ItemCode::Visualizations, &makeTab<CTabTblVis>},
    {CTableView::Notes, "Notes", ItemCode::TableNotes, &makeTab<CTabTblNotes>},
    {CTableView::Changes, "Changes", ItemCode::None, &makeTab<CTabTableChanges>},
}};
static_assert(isInOrder(kTabs));

} // namespace

CTableView::CTableView(CViewSite& site, bool isTornOff, QWidget* parent)
    : CReportView(site, ReportPaneKind::Table, kTabs, isTornOff, parent) {
    setObjectName(QStringLiteral("tableView"));
}

std::span<const CommandRow<CTableView>> CTableView::CommandRows() {
    return kCommands;
}

void CTableView::OpenStandardMetric(int fieldId, int metricId) {
    SelectTab(StandardMetrics);
    TabAs<CTabStdMet>(StandardMetrics).SelectMetric(fieldId, metricId);
}

void CTableView::OpenCustomMetric(int metricId) {
    SelectTab(CustomMetrics);
    TabAs<CTabCustMet>(CustomMetrics).SelectMetric(metricId);
}

void CTableView::OpenBusinessRule(int ruleId) {
    SelectTab(BusinessRules);
    TabAs<CTabBusRule>(BusinessRules).SelectRule(ruleId);
}

bool CTableView::ExecuteCommand(int commandId) {
    return CReportView::ExecuteCommand(commandId) || execute(CommandRows(), *this, commandId);
}

CommandState CTableView::UpdateCommand(int commandId) const {
    const CommandState state = CReportView::UpdateCommand(commandId);
    return state.handled ? state : stateOf(CommandRows(), *this, commandId);
}

bool CTableView::CanAddNote() const {
    return TabAs<CTabTblNotes>(Notes).CanAddNote();
}

void CTableView::OnAddNote() {
    SelectTab(Notes);
    TabAs<CTabTblNotes>(Notes).AddNote();
}

void CTableView::OnDetach() {
    Q_EMIT DetachRequested();
}

} // namespace tavix
