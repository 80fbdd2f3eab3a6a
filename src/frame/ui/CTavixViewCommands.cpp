#include "doc/CReportPane.h"
#include "frame/PaneChain.h"
#include "frame/ui/CDeleteHistoryDlg.h"
#include "frame/ui/COptionsSheet.h"
#include "frame/ui/CRunListDlg.h"
#include "frame/ui/CTavixView.h"
#include "nav/ui/CTableInfo.h"
#include "nav/ui/CTables.h"
#include "settings/Settings.h"
#include "tabs/ui/TearOff.h"

/// The commands of the view: which there are, who is asked first, and what the view does for those of its own.
namespace tavix {

namespace {

constexpr int kKeyStep = 24;

constexpr std::array<CommandRow<CTavixView>, 9> kCommands = {{
    {{CommandId::New, "Close the report\nNew"}, &CTavixView::OnNew},
    {{CommandId::ChooseRun, "Choose the run whose figures are shown from a list\nRuns..."},
     &CTavixView::OnChooseRun,
     &CTavixView::CanChooseRun},
    {{CommandId::ToggleTableInformation, "Show or hide what is known about the table\nTable Information"},
     &CTavixView::OnToggleTableInformation,
     &CTavixView::CanToggleTableInformation,
     &CTavixView::IsTableInformationShown},
    {{CommandId::NarrowNavigator, "Make the navigator narrower\nNarrower Navigator"},
     &CTavixView::OnMoveSplitter<Splitter::Left, -kKeyStep>},
    {{CommandId::WidenNavigator, "Make the navigator wider\nWider Navigator"},
     &CTavixView::OnMoveSplitter<Splitter::Left, kKeyStep>},
    {{CommandId::NarrowTableInformation, "Make the table information narrower\nNarrower Table Information"},
     &CTavixView::OnMoveSplitter<Splitter::Right, kKeyStep>,
     &CTavixView::IsTableInformationShown},
    {{CommandId::WidenTableInformation, "Make the table information wider\nWider Table Information"},
     &CTavixView::OnMoveSplitter<Splitter::Right, -kKeyStep>,
     &CTavixView::IsTableInformationShown},
    {{CommandId::RefreshCollections, "Look up the collections of every table anew\nRefresh Collections"},
     &CTavixView::OnRefreshCollections,
     &CTavixView::CanRefreshCollections},
    {{CommandId::ShowInvisible, "Show signs for blanks at the ends and for characters without a shape of their own\n"
                                "Invisible Characters"},
     &CTavixView::OnShowInvisible,
     nullptr,
     &CTavixView::ShowsInvisible},
}};

} // namespace

std::span<const CommandRow<CTavixView>> CTavixView::CommandRows() {
    return kCommands;
}

std::array<CommandTarget*, 3> CTavixView::CommandOrder() const {
    return {m_navigator, m_info, &GetReportPane()};
}

bool CTavixView::ExecuteCommand(int commandId) {
    return offerCommand(CommandOrder(), commandId) || execute(CommandRows(), *this, commandId);
}

CommandState CTavixView::UpdateCommand(int commandId) const {
    const CommandState state = askCommand(CommandOrder(), commandId);
    return state.handled ? state : stateOf(CommandRows(), *this, commandId);
}

void CTavixView::OnShowInvisible() {
    if (const Status written = writeFlag(m_document->GetSettings(), Setting::ShowInvisible, !ShowsInvisible());
        !written)
        m_document->GetMessages().warn(written.error().text);
    if (m_view)
        m_view->ApplyDisplay();
    for (CTearOff* window : TearOffs())
        window->ApplyDisplay();
}

bool CTavixView::ShowsInvisible() const {
    return readFlag(m_document->GetSettings(), Setting::ShowInvisible);
}

void CTavixView::OnToggleTableInformation() {
    if (m_info)
        CloseTableInformation();
    else
        OpenTableInformation();
    m_wantsInfo = m_info != nullptr;
    Remember();
}

void CTavixView::OnCloseTableInformation() {
    if (m_info)
        OnToggleTableInformation();
}

void CTavixView::OnNew() {
    m_document->Clear();
    Broadcast(RefreshHint::DocumentReset);
}

void CTavixView::OnRefreshCollections() {
    m_navigator->RefreshCollections();
}

void CTavixView::OnOptions() {
    COptionsSheet::Run(*m_document, this);
}

void CTavixView::OnChooseRun() {
    const int job = m_document->GetJobId();
    const QPointer<CTavixView> alive(this);
    const std::optional<int> run = CRunListDlg::Choose(*m_document, this);
    // The shell may have opened another report meanwhile.
    if (alive && run && m_document->GetJobId() == job)
        m_document->SetCurrentJob(*run);
}

void CTavixView::OnDeleteHistory() {
    // The request may retire the view, which drops the function that runs.
    if (const auto request = m_deleteHistoryRequest)
        request();
    else
        DeleteHistory();
}

bool CTavixView::CanDeleteHistory() const {
    return m_document->HasReport() && m_document->GetRunCount() > 1;
}

void CTavixView::DeleteHistory() {
    m_document->DeleteHistory(
        [this](HistoryDeletion& deletion) { return CDeleteHistoryDlg::Ask(*m_document, this, deletion); });
    TellRunsChanged();
}

} // namespace tavix
