#pragma once

#include "report/AlertStates.h"
#include "report/RuleSuggestion.h"

#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavix {

class PrViewer;

/// The parts of a condition that `and` joins, each in one spelling: without blanks and superfluous conversions, `==` as
/// `=`, `between` as two comparisons.
[[nodiscard]] std::vector<std::string> conjunctsOf(std::string_view condition);

/// The statements of a job's rules, custom metrics and alerts about the tables of the current run.
class KnownRules {
  public:
    /// Throws GenException when the repository fails.
    KnownRules(PrViewer& viewer, int job);

    /// Whether they say as much as the suggestion.
    [[nodiscard]] bool say(const RuleSuggestion& suggestion) const;
    /// The name, or the name with a number if the table has a rule or custom metric of that name. Takes it.
    [[nodiscard]] std::string takeName(int tableId, const std::string& name);

  private:
    [[nodiscard]] bool areConjunctsKnown(const RuleSuggestion& suggestion) const;
    [[nodiscard]] bool isAlertKnown(const RuleSuggestion& suggestion) const;

    std::set<std::pair<int, std::string>> m_conjuncts; ///< of the rules, by table
    std::set<std::pair<int, std::string>>
        m_bounded; ///< fields, in grave accents, that rules compare with a number or text
    std::set<std::pair<int, std::string>> m_expressions; ///< of the custom metrics, by table
    std::set<std::pair<int, std::string>> m_names;       ///< taken ones, by table
    std::vector<AlertState> m_alerts;
};

} // namespace tavix
