#include "report/RuleSuggestion.h"

#include "base/NumberText.h"
#include "report/CountText.h"

#include <fmt/format.h>

namespace tavix {

std::string_view suggestionWord(SuggestionKind kind) {
    return kSuggestionKinds[static_cast<std::size_t>(kind)].word;
}

std::string_view confidenceWord(SuggestionConfidence confidence) {
    constexpr std::array<std::string_view, 3> kWords{"low", "medium", "high"};
    return kWords[static_cast<std::size_t>(confidence)];
}

std::string_view elementWord(SuggestedElement element) {
    constexpr std::array<std::string_view, 4> kWords{"rule", "alert", "custom metric", "remark"};
    return kWords[static_cast<std::size_t>(element)];
}

std::string RuleSuggestion::ruleText() const {
    if (!alert)
        return condition;
    const std::string_view watched = element == SuggestedElement::MetricAlert
                                         ? std::string_view(condition)
                                         : metricCatalogue()[index(alert->metric)].name;
    return fmt::format("{} {} {}", watched, alert->isLeast ? "at least" : "at most", formatReal(alert->bound));
}

std::string RuleSuggestion::violationText() const {
    return violations == 0 ? "none" : countOf(violations, violationNoun);
}

} // namespace tavix
