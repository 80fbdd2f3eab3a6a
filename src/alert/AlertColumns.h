#pragma once

#include "grid/CUGDataSource.h"
#include "report/AlertStates.h"

#include <locale>
#include <string>

/// The columns of the lists of alerts.
namespace tavix {

enum class AlertColumn {
    Description,
    Type,
    Input, ///< the name of the field, custom metric or rule
    Path,  ///< data source, catalog, schema and table
    State,
    Level,
    Figure,
    ComparedWith,
    Raised, ///< for how long
    Condition,
    DefinedBy,
    Report, ///< the name of the job whose runs the alert watches
};

[[nodiscard]] GridColumn alertGridColumn(AlertColumn column);
/// `report` is the name of the alert's job.
[[nodiscard]] GridCell alertCell(AlertColumn column, const AlertState& alert, const std::string& report,
                                 const std::locale& locale);
/// The lines of a tooltip for any cell of the alert: its condition unless the description says it, how the figure
/// compares, and why it is muted.
[[nodiscard]] std::string alertToolTip(const AlertState& alert, const std::locale& locale);
/// The order of the State column, as of orderAlerts(): raised errors are 0.
[[nodiscard]] int alertRank(const AlertState& alert);

} // namespace tavix
