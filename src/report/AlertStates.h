#pragma once

#include "base/AlertRule.h"
#include "report/FitFigures.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// An alert of the repository, checked against the current run.
struct AlertState {
    int id = -1;
    int job = -1; ///< the job that defined it; -1 when the alert does not say
    std::string dataSource;
    std::string table; ///< as shown
    AlertSubject subject = AlertSubject::StandardMetric;
    std::string input; ///< the field, or the name of the custom metric or rule
    bool isOfRecords =
        false;          ///< it watches the number of records of the table, which is stored as the Count of that field
    std::string metric; ///< the name of the metric or of the custom metric's value; empty for a rule
    std::string description;
    std::optional<AlertRule> rule;  ///< nothing when the properties are invalid
    std::string sentence;           ///< the condition in words
    std::optional<FitFigures> fits; ///< when the figure is over the values that fit a narrower type
    std::optional<double> figure;   ///< of the current run
    AlertVerdict verdict;
    int tableId = -1;
    int fieldId = -1;   ///< of a standard metric
    int watchedId = -1; ///< of the standard metric, the custom metric or the rule

    /// The sentence, with a mark if the figure is over the values that fit a narrower type.
    [[nodiscard]] std::string condition() const;
    [[nodiscard]] bool isRaised() const { return verdict.state == AlertVerdict::State::Raised; }
    /// Raised, and of this level or a higher one.
    [[nodiscard]] bool isRaisedAt(AlertLevel level) const { return isRaised() && rule->level >= level; }
};

/// The alerts of a job in the order of its job file, checked against the current run and the runs before it. Verdicts
/// are not stored: an earlier run is checked against the present alerts, and its verdicts do not depend on later runs.
/// Throws GenException when the repository fails.
[[nodiscard]] std::vector<AlertState> readAlertStates(PrViewer& viewer, int job);

} // namespace tavix
