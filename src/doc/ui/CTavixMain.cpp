#include "doc/ui/CTavixMain.h"

#include "doc/ui/CTavixView.h"

#include <array>

namespace tavix {

namespace {

constexpr std::array<TavixCommand, 4> kCommands = {{
    {CommandId::New, "Close the report\nNew", &CTavixView::OnNew, nullptr},
    {CommandId::RefreshCollections, "Look up the collections of every table anew\nRefresh Collections",
     &CTavixView::OnRefreshCollections, &CTavixView::CanRefreshCollections},
    {CommandId::Options, "Choose metrics, limits and fonts\nOptions...", &CTavixView::OnOptions, nullptr},
    {CommandId::DeleteHistory, "Delete old runs of this report\nDelete History...", &CTavixView::OnDeleteHistory,
     &CTavixView::CanDeleteHistory},
}};

const TavixCommand* find(int commandId) {
    for (const TavixCommand& command : kCommands) {
        if (static_cast<int>(command.id) == commandId)
            return &command;
    }
    return nullptr;
}

} // namespace

std::span<const TavixCommand> CTavixMain::Commands() {
    return kCommands;
}

bool CTavixMain::Execute(int commandId) {
    const TavixCommand* command = find(commandId);
    if (!command)
        return false;
    if (Update(commandId).enabled)
        (m_view.*command->handler)();
    return true;
}

CommandState CTavixMain::Update(int commandId) const {
    const TavixCommand* command = find(commandId);
    if (!command)
        return {};
    return {.handled = true, .enabled = !command->isEnabled || (m_view.*command->isEnabled)(), .checked = false};
}

} // namespace tavix
