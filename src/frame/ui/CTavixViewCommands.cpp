#include "doc/CReportPane.h"
#include "frame/PaneChain.h"
#include "frame/ui/CDeleteHistoryDlg.h"
#include "frame/ui/COptionsSheet.h"
#include "frame/ui/CRunListDlg.h"
#include "frame/ui/CTavixView.h"
#include "nav/ui/CTableInfo.h"
#include "nav/ui/CTables.h"
#include "settings/Settings.h"
#include "tabs/ui/CRunView.h"
#include "tabs/ui/TearOff.h"

/// The commands of the view: its handlers, and the panes that are asked first.
namespace tavix {

namespace {

constexpr int kKeyStep = 24;

constexpr std::array<CommandRow<CTavixView>, 9> kRows = {{
    {CommandId::New, &CTavixView::OnNew},
    {CommandId::ChooseRun, &CTavixView::OnChooseRun, &CTavixView::CanChooseRun},
    {CommandId::ToggleTableInformation, &CTavixView::OnToggleTableInformation, &CTavixView::CanToggleTableInformation,
     &CTavixView::IsTableInformationShown},
    {CommandId::NarrowNavigator, &CTavixView::OnMoveSplitter<Splitter::Left, -kKeyStep>},
    {CommandId::WidenNavigator, &CTavixView::OnMoveSplitter<Splitter::Left, kKeyStep>},
    {CommandId::NarrowTableInformation, &CTavixView::OnMoveSplitter<Splitter::Right, kKeyStep>,
     &CTavixView::IsTableInformationShown},
    {CommandId::WidenTableInformation, &CTavixView::OnMoveSplitter<Splitter::Right, -kKeyStep>,
     &CTavixView::IsTableInformationShown},
    {CommandId::RefreshCollections, &CTavixView::OnRefreshCollections, &CTavixView::CanRefreshCollections},
    {CommandId::ShowInvisible, &CTavixView::OnShowInvisible, nullptr, &CTavixView::ShowsInvisible},
}};

constexpr std::span<const CommandRow<CTavixView>> kHandlers(kRows);

} // namespace

std::array<CommandTarget*, 3> CTavixView::CommandOrder() const {
    return {m_navigator, m_info, &GetReportPane()};
}

bool CTavixView::ExecuteCommand(int commandId) {
    return offerCommand(CommandOrder(), commandId) || execute(kHandlers, *this, commandId);
}

CommandState CTavixView::UpdateCommand(int commandId) const {
    const CommandState state = askCommand(CommandOrder(), commandId);
    return state.handled ? state : stateOf(kHandlers, *this, commandId);
}

void CTavixView::OnShowInvisible() {
    if (const Status written = writeFlag(m_document->GetSettings(), Setting::ShowInvisible, !ShowsInvisible());
        !written)
        m_document->GetMessages().warn(written.error().text);
    if (m_view)
        m_view->ApplyDisplay();
    if (m_overview)
        m_overview->ApplyDisplay();
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
    const ColorScheme before = readColorScheme(m_document->GetSettings());
    const QPointer<CTavixView> alive(this);
    COptionsSheet::Run(*m_document, this, m_offersColors && m_offersColors());
    if (!alive)
        return;
    const ColorScheme after = readColorScheme(m_document->GetSettings());
    // Called through a copy: the function may retire the view, which clears the member.
    if (const auto chosen = m_colorsChosen; chosen && after != before)
        chosen(after);
}

void CTavixView::OnChooseRun() {
    const int job = m_document->GetJobId();
    const QPointer<CTavixView> alive(this);
    const std::optional<int> run = CRunListDlg::Choose(*m_document, this);
    // The shell may have opened another report while the dialog was open.
    if (alive && run && m_document->GetJobId() == job)
        m_document->SetCurrentJob(*run);
}

void CTavixView::OnDeleteHistory() {
    // Called through a copy: the request may retire the view, which clears the member.
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
