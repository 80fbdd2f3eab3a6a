#pragma once

#include "base/Result.h"
#include "report/RuleSuggestion.h"

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

class PrViewer;

/// The rules that a run suggests, of which the user chooses those for a job file. Nothing is stored unless the user
/// saves the file.
class SuggestionsModel {
  public:
    static constexpr std::array<std::string_view, 6> kHeadings{"Field", "Kind",  "Confidence", "Violations Today",
                                                               "Rule",  "Reason"};

    /// Reads the suggestions for a table; -1 for all tables of the run. `pulse` is called regularly; an exception from
    /// it ends the search. At first those of medium and high confidence are chosen.
    [[nodiscard]] Status Fill(PrViewer& viewer, int job, int tableId, const std::function<void()>& pulse);

    [[nodiscard]] std::size_t size() const { return m_all.size(); }
    /// The texts of a suggestion below kHeadings.
    [[nodiscard]] std::array<std::string, kHeadings.size()> CellsOf(std::size_t suggestion) const;
    /// "" when there is nothing to know.
    [[nodiscard]] const std::string& RemarkOf(std::size_t suggestion) const { return m_all.at(suggestion).remark; }
    [[nodiscard]] bool IsChosen(std::size_t suggestion) const { return m_chosen.at(suggestion); }
    void Choose(std::size_t suggestion, bool isChosen) { m_chosen.at(suggestion) = isChosen; }
    void ChooseAll(bool isChosen) { m_chosen.assign(m_all.size(), isChosen); }
    /// "12 of 20 suggestions chosen".
    [[nodiscard]] std::string GetSummary() const;

    /// The job file with the chosen suggestions.
    [[nodiscard]] Result<std::string> MakeFile(PrViewer& viewer) const;
    /// An error is a sentence for the user.
    [[nodiscard]] static Status Save(const std::string& path, std::string_view text);

  private:
    int m_job = -1;
    int m_table = -1;
    std::vector<RuleSuggestion> m_all;
    std::vector<bool> m_chosen;
};

} // namespace tavix
