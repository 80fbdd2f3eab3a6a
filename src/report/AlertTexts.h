#pragma once

#include "report/AlertStates.h"

#include <locale>
#include <string>

/// The texts of an alert for lists, exports and the tool, so that all of them say the same.
namespace tavix {

/// "Sales.north.public.orders": the data source; catalog and schema where they are not empty, unless the table has an
/// object name; and the object or table name.
[[nodiscard]] std::string alertPath(const AlertState& alert);
/// A figure: "3,376", or of a percentage "0.36 %".
[[nodiscard]] std::string alertNumberText(double figure, bool isPercent);
/// A limit, as exact as the user wrote it.
[[nodiscard]] std::string alertLimitText(double limit, bool isPercent);
/// "error" or "warning"; empty without a rule.
[[nodiscard]] std::string alertLevelText(const AlertState& alert);
/// "3,376" or "0.36 %"; empty if the run does not have the figure.
[[nodiscard]] std::string alertFigureText(const AlertState& alert);
/// The limit, range or reference that the figure is compared with: "above 5", "run before: 12", "mean of 3 runs: 8",
/// "run before: none".
[[nodiscard]] std::string alertReferenceText(const AlertState& alert);
/// "this run", "3 runs, since Fri Nov 20 08:15:00 2026"; empty unless the alert is raised, muted or not.
[[nodiscard]] std::string alertSinceText(const AlertState& alert, const std::locale& locale);
/// "job" or the user who made it.
[[nodiscard]] std::string alertOriginText(const AlertState& alert);
/// "Muted by anna on Fri Nov 20 08:15:00 2026 for 3 runs: known gap"; empty if it is not.
[[nodiscard]] std::string alertMuteText(const AlertState& alert, const std::locale& locale);
/// "2 errors, 1 warning", "no alert raised, 1 muted, 3 cannot be judged", "no alerts": for a line or a card.
[[nodiscard]] std::string alertCountsText(const AlertCounts& counts);

} // namespace tavix
