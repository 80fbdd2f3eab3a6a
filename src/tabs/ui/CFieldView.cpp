#include "tabs/ui/CFieldView.h"

#include "doc/CTavixDoc.h"
#include "doc/CollectionMembers.h"
#include "tabs/ui/CTabColProf.h"
#include "tabs/ui/CTabFreqDist.h"
#include "tabs/ui/CTabNotes.h"
#include "tabs/ui/CTabPKFK.h"

#include <array>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CFieldView>, 2> kCommands = {{
    {CommandId::AddFieldNote, &CFieldView::OnAddNote, &CFieldView::CanAddNote},
    {CommandId::DetachTabs, &CFieldView::OnDetach, &CFieldView::CanDetach},
}};

} // namespace

CFieldView::CFieldView(CViewSite& site, bool isTornOff, QWidget* parent)
    : CReportView(site, ReportPaneKind::Field, isTornOff, parent),
      m_values(new CTabFreqDist(site, GetSubject(), isTornOff, itemCode(ReportPaneKind::Field, Frequency))),
      m_patterns(new CTabFreqDist(site, GetSubject(), isTornOff, itemCode(ReportPaneKind::Field, Patterns))),
      m_notes(new CTabNotes(site, GetSubject(), isTornOff)) {
    setObjectName(QStringLiteral("fieldView"));
    const auto code = [](Tab tab) { return itemCode(ReportPaneKind::Field, tab); };
    AddTab(new CTabColProf(site, GetSubject(), isTornOff, code(ColumnProfiling)), "Column Profiling");
    AddTab(m_values, "Frequency Distribution");
    AddTab(m_patterns, "Pattern Frequency Distribution");
    AddTab(new CTabColProf(site, GetSubject(), isTornOff, code(Percentiles)), "Percentiles");
    AddTab(new CTabColProf(site, GetSubject(), isTornOff, code(Outliers)), "Outliers");
    AddTab(new CTabPKFK(site, GetSubject(), isTornOff), "Primary Key/Foreign Key Analysis");
    AddTab(m_notes, "Notes");
    Start();
}

std::span<const CommandRow<CFieldView>> CFieldView::CommandRows() {
    return kCommands;
}

QString CFieldView::CaptionOf(int index) const {
    const QString caption = CReportView::CaptionOf(index);
    const CTabFreqDist* tab = index == Frequency ? m_values : index == Patterns ? m_patterns : nullptr;
    return tab && tab->IsFiltered() ? tr("%1 (Filtered)").arg(caption) : caption;
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
    return m_notes->CanAddNote();
}

void CFieldView::OnAddNote() {
    SelectTab(Notes);
    m_notes->AddNote();
}

void CFieldView::OnDetach() {
    Q_EMIT DetachRequested();
}

} // namespace tavix
