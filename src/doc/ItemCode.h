#pragma once

namespace tavix {

/// What the report pane shows.
enum class ReportPaneKind { Empty, Table, Field };

/// The code by which export and print know a tab; -1 when there is nothing that they could act on. `tabIndex` counts
/// the pane's tabs from 0.
[[nodiscard]] int itemCode(ReportPaneKind pane, int tabIndex);

} // namespace tavix
