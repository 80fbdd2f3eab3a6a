#pragma once

#include "report/AlertStates.h"
#include "report/ReportSelection.h"

namespace tavix {

class ProfileCursor;

/// Whether the list of a table's alerts has this one: by the names of data source, catalog and schema, and by the
/// object name or, without one, the table name. The marks in a grid of metrics go by more, see StdMetRows.
[[nodiscard]] bool isListedFor(const AlertState& alert, const TableIdentity& table);
/// The same for a row of PrViewer::getAlerts.
[[nodiscard]] bool isListedFor(const ProfileCursor& alert, const TableIdentity& table);

} // namespace tavix
