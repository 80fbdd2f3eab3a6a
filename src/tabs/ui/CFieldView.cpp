#include "tabs/ui/CFieldView.h"

#include "doc/CTavixDoc.h"
#include "doc/CollectionMembers.h"
#include "tabs/ui/CNotesTab.h"
#include "tabs/ui/CTabChanges.h"
#include "tabs/ui/CTabColProf.h"
#include "tabs/ui/CTabFreqDist.h"
#include "tabs/ui/PlainListTab.h"

#include <array>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CFieldView>, 2> kCommands = {{
    {CommandId::AddFieldNote, &CFieldView::OnAddNote, &CFieldView::CanAddNote},
    {CommandId::DetachTabs, &CFieldView::OnDetach, &CFieldView::CanDetach},
}};

constexpr std::array<TabRow, 8> kTabs = {{
    {CFieldView::ColumnProfiling, "Column Profiling", ItemCode::ColumnProfiling, &makeTab<CTabColProf>},
    {CFieldView::Frequency, "Frequency Distribution", ItemCode::Frequency, &makeTab<CTabFreqDist>},
    {CFieldView::Patterns, "Pattern Frequency Distribution", ItemCode::Patterns, &makeTab<CTabFreqDist>},
    {CFieldView::Percentiles, "Percentiles", ItemCode::Percentiles, &makeTab<CTabColProf>},
    {CFieldView::Outliers, "Outliers", ItemCode::Outliers, &makeTab<CTabColProf>},
    {CFieldView::KeyAnalysis, "Primary Key/Foreign Key Analysis", ItemCode::KeyAnalysis, &makeTab<CTabPKFK>},
    {CFieldView::Notes, "Notes", ItemCode::FieldNotes, &makeTab<CTabNotes>},
    {CFieldView::Changes, "Changes", ItemCode::None, &makeTab<CTabFieldChanges>},
}};
static_assert(isInOrder(kTabs));

} // namespace

CFieldView::CFieldView(CViewSite& site, bool isTornOff, QWidget* parent)
    : CReportView(site, ReportPaneKind::Field, kTabs, isTornOff, parent) {
    setObjectName(QStringLiteral("fieldView"));
}

std::span<const CommandRow<CFieldView>> CFieldView::CommandRows() {
    return kCommands;
}

int CFieldView::AddToCollection(int collectionId) {
    const int fieldId = GetSubject().selection.fieldId;
    return fieldId == -1 ? 0 : addFieldsToCollection(Site().GetTavixDoc(), collectionId, {&fieldId, 1});
}

bool CFieldView::ExecuteCommand(int commandId) {
    return CReportView::ExecuteCommand(commandId) || execute(CommandRows(), *this, commandId);
}

CommandState CFieldView::UpdateCommand(int commandId) const {
    const CommandState state = CReportView::UpdateCommand(commandId);
    return state.handled ? state : stateOf(CommandRows(), *this, commandId);
}

bool CFieldView::CanAddNote() const {
    return TabAs<CTabNotes>(Notes).CanAddNote();
}

void CFieldView::OnAddNote() {
    SelectTab(Notes);
    TabAs<CTabNotes>(Notes).AddNote();
}

void CFieldView::OnDetach() {
    Q_EMIT DetachRequested();
}

} // namespace tavix
