#include "drill/DrillTexts.h"

#include "access/SourceChange.h"
#include "doc/CountText.h"
#include "grid/FoldCase.h"

namespace tavix {

std::string_view drillTitle(DrillOrigin origin) {
    switch (origin) {
    case DrillOrigin::Frequency:
        return "Frequency Distribution Drill Through";
    case DrillOrigin::PatternFrequency:
        return "Pattern Frequency Distribution Drill Through";
    case DrillOrigin::BusinessRule:
        return "Business Rule Violation Drill Through";
    case DrillOrigin::Outliers:
        break;
    }
    return "Outliers Drill Through";
}

bool isDrillOffered(const SettingsStore& settings) {
    return foldCase(settings.read("Settings", "ConnectionType")) != "ctdd";
}

std::string drillStatus(const DrillResult& result, std::optional<std::int64_t> inRun) {
    const std::int64_t rows = result.rows.count();
    switch (result.end) {
    case DrillEnd::LimitReached:
        // Whether the source has more is known only from the run.
        if (inRun && *inRun == rows)
            return countOf(rows, "row");
        return "The first " + countOf(rows, "row") + (inRun && *inRun > rows ? " of " + groupedCount(*inRun) : "") +
               ": the limit in the options is reached";
    case DrillEnd::Cancelled:
        return "Cancelled: the first " + countOf(rows, "row");
    case DrillEnd::Failed:
        return "Incomplete: the first " + countOf(rows, "row") + (result.reason.empty() ? "" : ". " + result.reason);
    case DrillEnd::Complete:
        break;
    }
    const std::string change = inRun ? sourceChangeText(*inRun, rows) : std::string();
    return change.empty() ? countOf(rows, "row") : change;
}

} // namespace tavix
