#include "frame/ui/CTavixMain.h"

#include "alert/ui/AlertPlace.h"
#include "alert/ui/CTabRptAlrts.h"
#include "frame/ui/CTavixView.h"
#include "notes/ui/CNoteCategoriesDlg.h"

#include <QPointer>

#include <array>
#include <optional>
#include <span>
#include <utility>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CTavixMain>, 4> kRows = {{
    {CommandId::Options, &CTavixMain::OnOptions},
    {CommandId::DeleteHistory, &CTavixMain::OnDeleteHistory, &CTavixMain::CanDeleteHistory},
    {CommandId::Alerts, &CTavixMain::OnAlerts, &CTavixMain::HasTitle},
    {CommandId::NoteCategories, &CTavixMain::OnNoteCategories, &CTavixMain::HasTitle},
}};

constexpr std::span<const CommandRow<CTavixMain>> kHandlers(kRows);

} // namespace

bool CTavixMain::Execute(int commandId) {
    return m_view.ExecuteCommand(commandId) || execute(kHandlers, *this, commandId);
}

CommandState CTavixMain::Update(int commandId) const {
    const CommandState state = m_view.UpdateCommand(commandId);
    return state.handled ? state : stateOf(kHandlers, *this, commandId);
}

void CTavixMain::OnOptions() {
    m_view.OnOptions();
}

void CTavixMain::OnDeleteHistory() {
    m_view.OnDeleteHistory();
}

void CTavixMain::OnAlerts() {
    const QPointer<CTavixView> alive(&m_view);
    CAlertsFilter filter = m_alertsFilter;
    const std::optional<NavigateRequest> place = CTabRptAlrts::Run(m_view, filter, &m_view);
    if (!alive || m_view.IsRetired())
        return;
    m_alertsFilter = std::move(filter);
    if (place)
        (void)showPlace(m_view, *place);
}

void CTavixMain::OnNoteCategories() {
    if (CNoteCategoriesDlg::Run(m_view.GetTavixDoc(), &m_view))
        m_view.Broadcast(RefreshHint::NotesChanged);
}

bool CTavixMain::CanDeleteHistory() const {
    return m_view.CanDeleteHistory();
}

bool CTavixMain::HasTitle() const {
    return m_view.GetTavixDoc().HasReport();
}

bool CTavixMain::HasCurrentItem() const {
    return HasTitle() && m_view.GetItemCode() != -1;
}

} // namespace tavix
