#include "drill/DrillTexts.h"

#include "access/SourceChange.h"
#include "grid/FoldCase.h"
#include "report/CountText.h"
#include "settings/Settings.h"

namespace tavix {

namespace {

std::string countStatus(const DrillResult& result, std::optional<std::int64_t> inRun) {
    const std::int64_t rows = result.rows.count();
    switch (result.end) {
    case DrillEnd::LimitReached:
        // Only the run's count shows whether the source has more rows.
        if (inRun && *inRun == rows)
            return countOf(rows, "row");
        return "The first " + countOf(rows, "row") + (inRun && *inRun > rows ? " of " + groupedCount(*inRun) : "") +
               ": the limit in the options is reached";
    case DrillEnd::Cancelled:
        return "Cancelled: the first " + countOf(rows, "row");
    case DrillEnd::Failed:
        return "Incomplete: the first " + countOf(rows, "row");
    case DrillEnd::Complete:
        break;
    }
    const std::string change = inRun ? sourceChangeText(*inRun, rows) : std::string();
    return change.empty() ? countOf(rows, "row") : change;
}

} // namespace

std::string drillDeclined(std::string_view source) {
    std::string text(kDrillUnavailable);
    text.append("\n\nNo user and password were given for the data source \u201C").append(source).append("\u201D.");
    return text;
}

std::string_view drillTitle(DrillOrigin origin) {
    switch (origin) {
    case DrillOrigin::Frequency:
        return "Frequency Distribution Drill Through";
    case DrillOrigin::PatternFrequency:
        return "Pattern Frequency Distribution Drill Through";
    case DrillOrigin::BusinessRule:
        return "Business Rule Violation Drill Through";
    case DrillOrigin::StandardMetrics:
        return "Standard Metrics Drill Through";
    case DrillOrigin::Outliers:
        break;
    }
    return "Outliers Drill Through";
}

bool isDrillOffered(const SettingsStore& settings) {
    return foldCase(readText(settings, Setting::ConnectionType)) != "ctdd";
}

std::string searchStatus(std::int64_t shown, std::int64_t all, std::string_view statusOfAll) {
    std::string status = groupedCount(shown) + " of " + countOf(all, "row") + (shown == 1 ? " matches" : " match");
    if (statusOfAll != countOf(all, "row"))
        status.append(". ").append(statusOfAll);
    return status;
}

std::string drillStatus(const DrillResult& result, std::optional<std::int64_t> inRun) {
    std::string status = countStatus(result, inRun);
    for (const std::string& more : {result.reason, result.warning}) {
        if (!more.empty())
            status += (status.ends_with('.') ? " " : ". ") + more;
    }
    return status;
}

} // namespace tavix
