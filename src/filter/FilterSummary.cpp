#include "filter/FilterSummary.h"

#include "filter/ConditionBlock.h"

namespace tavix {

std::string FilterSummary(std::string_view filterText) {
    const ParsedFilter parsed = ParseConditionBlock(filterText, FilterAction::RemoveFailing);
    std::string words = parsed.understood ? BuildPlainText(parsed.conditions) : parsed.text;
    std::string line;
    for (const char c : words) {
        const bool blank = c == ' ' || c == '\t' || c == '\r' || c == '\n';
        if (!blank)
            line += c;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    while (line.ends_with(' '))
        line.pop_back();
    return parsed.action == FilterAction::RemovePassing && !line.empty() ? "not (" + line + ")" : line;
}

} // namespace tavix
