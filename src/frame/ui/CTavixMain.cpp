#include "frame/ui/CTavixMain.h"

#include "frame/ui/CTavixView.h"
#include "notes/ui/CNoteCategoriesDlg.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/CTabFreqDist.h"
#include "tabs/ui/CTableView.h"

#include <array>
#include <vector>

namespace tavix {

namespace {

constexpr std::array<CommandRow<CTavixMain>, 3> kCommands = {{
    {{CommandId::Options, "Choose metrics, limits and fonts\nOptions..."}, &CTavixMain::OnOptions},
    {{CommandId::DeleteHistory, "Delete old runs of this report\nDelete History..."},
     &CTavixMain::OnDeleteHistory,
     &CTavixMain::CanDeleteHistory},
    {{CommandId::NoteCategories, "Add, edit, and delete note categories.\nNote Categories..."},
     &CTavixMain::OnNoteCategories,
     &CTavixMain::HasTitle},
}};

constexpr std::span<const CommandRow<CTavixMain>> kRows(kCommands);

} // namespace

std::span<const TavixCommand> CTavixMain::Commands() {
    static const std::vector<TavixCommand> kAll = [] {
        std::vector<TavixCommand> all;
        for (const CommandRow<CTavixView>& row : CTavixView::CommandRows())
            all.push_back(row.command);
        for (const CommandRow<CTavixMain>& row : kRows)
            all.push_back(row.command);
        // A command that both views know is one command.
        for (const CommandRow<CTableView>& row : CTableView::CommandRows())
            all.push_back(row.command);
        for (const CommandRow<CFieldView>& row : CFieldView::CommandRows()) {
            if (!findCommand(CTableView::CommandRows(), static_cast<int>(row.command.id)))
                all.push_back(row.command);
        }
        for (const CommandRow<CTabFreqDist>& row : CTabFreqDist::CommandRows())
            all.push_back(row.command);
        return all;
    }();
    return kAll;
}

bool CTavixMain::Execute(int commandId) {
    return m_view.ExecuteCommand(commandId) || execute(kRows, *this, commandId);
}

CommandState CTavixMain::Update(int commandId) const {
    const CommandState state = m_view.UpdateCommand(commandId);
    return state.handled ? state : stateOf(kRows, *this, commandId);
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
