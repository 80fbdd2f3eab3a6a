#include "filter/FilterSummary.h"

#include "filter/ConditionBlock.h"
#include "filter/OneLine.h"

namespace tavix {

std::string FilterSummary(std::string_view filterText) {
    const ParsedFilter parsed = ParseConditionBlock(filterText, FilterAction::RemoveFailing);
    std::string line = OneLine(parsed.understood ? BuildPlainText(parsed.conditions) : parsed.text);
    return parsed.action == FilterAction::RemovePassing && !line.empty() ? "not (" + line + ")" : line;
}

} // namespace tavix
