#include "frame/ui/CTavixMain.h"

#include "frame/ui/CTavixView.h"
#include "notes/ui/CNoteCategoriesDlg.h"

#include <array>
#include <span>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CTavixMain>, 3> kRows = {{
    {CommandId::Options, &CTavixMain::OnOptions},
    {CommandId::DeleteHistory, &CTavixMain::OnDeleteHistory, &CTavixMain::CanDeleteHistory},
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
