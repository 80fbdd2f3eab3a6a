#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CommandTarget.h"

#include <span>

namespace tavix {

/// Offers the command to one after the other until one handles it. A null stands for a pane that is not there.
bool offerCommand(std::span<CommandTarget* const> chain, int commandId);
/// What the first who knows the command says about it.
[[nodiscard]] CommandState askCommand(std::span<CommandTarget* const> chain, int commandId);
/// Tells everyone but the sender, in order. While a report is loading, TaskListLost is kept back.
void refreshPanes(std::span<CRefreshItem* const> panes, CRefreshItem* sender, RefreshHint hint, int parameter,
                  bool isLoading);

} // namespace tavix
