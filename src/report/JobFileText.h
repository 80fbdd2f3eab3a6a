#pragma once

#include "base/Result.h"
#include "report/RuleSuggestion.h"

#include <span>
#include <string>

namespace tavix {

class PrViewer;

/// The text of a job file that reads the tables of the current run as the run did and has the rules, custom metrics and
/// alerts that the job has, and these suggestions, each with its reason as a comment. `tableId` limits it to a table
/// and the one that it filters; -1: all tables. Fails if the run does not say from where the rows came, or a name is
/// not UTF-8.
/// Throws GenException when the repository fails.
[[nodiscard]] Result<std::string> jobFileText(PrViewer& viewer, int job, std::span<const RuleSuggestion> suggestions,
                                              int tableId = -1);

} // namespace tavix
