#pragma once

#include "report/AlertStates.h"

#include <span>
#include <string>

namespace tavix {

/// The condition in a job file: "max: 5", "change: 20 %, runs: 3, against: median".
[[nodiscard]] std::string alertConditionText(const AlertRule& rule);

/// An alert, which must have a rule, as an entry of a job file without the braces:
/// "field: price, metric: Null Count, max: 0".
[[nodiscard]] std::string alertEntryText(const AlertState& alert);

/// The alerts as the lists of a job file, table by table; those of users with author and date as a comment. Alerts
/// without a rule are left out.
[[nodiscard]] std::string alertEntriesText(std::span<const AlertState> alerts);

} // namespace tavix
