#pragma once

#include "base/AlertDefinition.h"
#include "base/Result.h"
#include "report/AlertBackTest.h"
#include "report/AlertStates.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

class PrViewer;

/// The reference of a change as the user chooses it: the run before is the mean of one run.
enum class AgainstChoice { RunBefore, Mean, Median, SameWeekday };

/// An alert while a user makes or edits it, with what the stored runs say about it. Limits are kept as texts, so that
/// they may be wrong for a while.
class AlertDraft {
  public:
    /// Something of a table that an alert can watch.
    struct Input {
        AlertSubject subject = AlertSubject::StandardMetric;
        int id = -1;        ///< of the field, custom metric or rule; -1: the records of the table
        std::string name;   ///< of the field, custom metric or rule
        std::string output; ///< of a custom metric: the name of its value

        [[nodiscard]] std::string Label() const; ///< "Field price", "Rule Name is known"
        bool operator==(const Input&) const = default;
    };

    /// A comparison as it is offered.
    struct ComparisonChoice {
        AlertComparison comparison;
        std::string_view text;
    };

    static constexpr int kMostRuns = 1000;
    /// In characters.
    static constexpr int kLongestDescription = 1000;

    [[nodiscard]] static std::span<const ComparisonChoice> Comparisons();

    /// A new alert on the figure, whose table the current run has. All inputs of the table are offered.
    [[nodiscard]] static Result<AlertDraft> MakeNew(PrViewer& viewer, const AlertDefinition& figure);
    /// The stored alert; it keeps its figure. Without a rule it starts like a new one.
    [[nodiscard]] static AlertDraft Edit(PrViewer& viewer, const AlertState& alert);

    // The figure. Choosing one reads its history.
    [[nodiscard]] const std::vector<Input>& GetInputs() const { return m_inputs; }
    [[nodiscard]] std::size_t GetInput() const { return m_input; }
    /// The figures of the chosen input: the names of metrics, "Failed row count" and the like.
    [[nodiscard]] std::vector<std::string> GetFigures() const;
    [[nodiscard]] std::size_t GetFigure() const { return m_figure; }
    [[nodiscard]] bool CanChooseFigure() const { return m_inputs.size() > 1 || GetFigures().size() > 1; }
    void ChooseInput(PrViewer& viewer, std::size_t input);
    void ChooseFigure(PrViewer& viewer, std::size_t figure);
    /// "%" for percentages and for changes in percent, else "".
    [[nodiscard]] std::string_view GetUnit() const;

    // The rule.
    [[nodiscard]] AlertComparison GetComparison() const { return m_rule.comparison; }
    void SetComparison(AlertComparison comparison);
    [[nodiscard]] const std::string& GetValue1() const { return m_value1; }
    [[nodiscard]] const std::string& GetValue2() const { return m_value2; }
    void SetValue1(std::string text);
    void SetValue2(std::string text);
    [[nodiscard]] AgainstChoice GetAgainst() const { return m_against; }
    void SetAgainst(AgainstChoice against);
    [[nodiscard]] int GetRuns() const { return m_rule.runs; }
    void SetRuns(int runs);
    [[nodiscard]] AlertLevel GetLevel() const { return m_rule.level; }
    void SetLevel(AlertLevel level) { m_rule.level = level; }
    /// As the user has written it; empty: the sentence.
    [[nodiscard]] const std::string& GetDescription() const { return m_description; }
    void SetDescription(std::string text) { m_description = std::move(text); }

    /// Why the alert cannot be stored yet, as a sentence for the user.
    [[nodiscard]] Status Check() const;
    /// The condition in words; empty until the limits are numbers.
    [[nodiscard]] std::string GetSentence() const;
    /// Only after a successful Check().
    [[nodiscard]] AlertDefinition GetDefinition() const;
    /// Whether the user would lose something with it.
    [[nodiscard]] bool IsChanged() const;

    // From the history.
    /// The runs with their verdicts; without verdicts until the limits are numbers.
    [[nodiscard]] const AlertBackTest& GetBackTest() const { return m_test; }
    /// "It would have been raised in 3 of 12 runs.", or why that cannot be said.
    [[nodiscard]] std::string GetBackTestText() const;
    /// "3,376" for the run that is shown; empty without the figure.
    [[nodiscard]] std::string GetFigureText() const;
    [[nodiscard]] bool IsPercent() const;
    /// The rule if its limits are numbers.
    [[nodiscard]] std::optional<AlertRule> GetRule() const;
    [[nodiscard]] const std::vector<LimitProposal>& GetProposals() const { return m_proposals; }
    /// "is greater than 12: raised in 1 run (above the 95th percentile of 24 runs)".
    [[nodiscard]] std::string ProposalText(std::size_t proposal) const;
    void Apply(std::size_t proposal);

  private:
    [[nodiscard]] const Input& Chosen() const { return m_inputs.at(m_input); }
    void Start(const AlertRule& rule, std::string description);
    void ShowFigureOfRule();
    /// Reads the history of the figure. A failure is kept as the text of the back-test.
    void ReadHistory(PrViewer& viewer);
    void Judge();
    void Propose();
    [[nodiscard]] std::string LimitText(double value) const;

    int m_table = -1;
    std::vector<Input> m_inputs; ///< never empty
    std::size_t m_input = 0;
    std::size_t m_figure = 0;
    MetricId m_metric = MetricId::Count;
    bool m_isFixed = false; ///< a stored alert keeps its figure
    AlertRule m_rule;       ///< without its limits
    AgainstChoice m_against = AgainstChoice::RunBefore;
    std::string m_value1;
    std::string m_value2;
    std::string m_description;

    std::vector<BackTestRun> m_runs; ///< not judged
    std::string m_failure;           ///< of reading them
    AlertBackTest m_test;
    std::vector<LimitProposal> m_proposals;

    struct Kept {
        AlertRule rule;
        std::string value1;
        std::string value2;
        std::string description;

        bool operator==(const Kept&) const = default;
    };
    [[nodiscard]] Kept Now() const { return {m_rule, m_value1, m_value2, m_description}; }
    Kept m_kept; ///< as it began
};

} // namespace tavix
