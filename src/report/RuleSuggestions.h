#pragma once

#include "report/RuleSuggestion.h"

#include <vector>

namespace tavix {

class PrViewer;

/// The rules that the current run of the job and the runs before it suggest, in the order of tables and fields, without
/// those that the job has. Reads the distributions of the chosen fields, and for references those of possible keys;
/// violations are counted in them. Throws GenException when the repository fails.
[[nodiscard]] std::vector<RuleSuggestion> suggestRules(PrViewer& viewer, int job, const SuggestionOptions& options);

} // namespace tavix
