#include "frame/PaneChain.h"

namespace tavix {

bool offerCommand(std::span<CommandTarget* const> chain, int commandId) {
    for (CommandTarget* target : chain) {
        if (target && target->ExecuteCommand(commandId))
            return true;
    }
    return false;
}

CommandState askCommand(std::span<CommandTarget* const> chain, int commandId) {
    for (const CommandTarget* target : chain) {
        if (!target)
            continue;
        if (const CommandState state = target->UpdateCommand(commandId); state.handled)
            return state;
    }
    return {};
}

void refreshPanes(std::span<CRefreshItem* const> panes, CRefreshItem* sender, RefreshHint hint, int parameter,
                  bool isLoading) {
    if (isLoading && hint == RefreshHint::TaskListLost)
        return;
    for (CRefreshItem* pane : panes) {
        if (pane && pane != sender)
            pane->Refresh(sender, hint, parameter);
    }
}

} // namespace tavix
