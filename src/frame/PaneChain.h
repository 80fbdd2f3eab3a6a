#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CommandTarget.h"

#include <span>

namespace tavix {

/// Offers the command to the targets in order until one handles it. Null means that there is no such pane.
bool offerCommand(std::span<CommandTarget* const> chain, int commandId);
/// The state that the first target with a handler for the command reports.
[[nodiscard]] CommandState askCommand(std::span<CommandTarget* const> chain, int commandId);
/// Refreshes all panes but the sender, in order. While a report is loading, TaskListLost is dropped.
void refreshPanes(std::span<CRefreshItem* const> panes, CRefreshItem* sender, RefreshHint hint, int parameter,
                  bool isLoading);

} // namespace tavix
