#pragma once

#include "base/AlertRule.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// An alert of the repository and what the current run makes of it.
struct AlertState {
    int id = -1;
    int job = -1; ///< that defined it; -1 when it does not say
    std::string dataSource;
    std::string table; ///< as shown
    AlertSubject subject = AlertSubject::StandardMetric;
    std::string input;        ///< the field, or the name of the custom metric or rule
    bool isOfRecords = false; ///< it watches the records of the table, which are kept as the Count of that field
    std::string metric;       ///< the metric's name, of a custom metric that of its value; empty for a rule
    std::string description;
    std::optional<AlertRule> rule; ///< nothing when its properties make no rule
    std::string sentence;          ///< the condition in words
    std::optional<double> figure;  ///< of the current run
    AlertVerdict verdict;

    [[nodiscard]] bool isRaised() const { return verdict.state == AlertVerdict::State::Raised; }
    /// Also its level is this or a higher one.
    [[nodiscard]] bool isRaisedAt(AlertLevel level) const { return isRaised() && rule->level >= level; }
};

/// The alerts that a job has defined, in the order in which it did, checked against the current run and those of its
/// job before it. Nothing about them is stored with a run: an earlier run is checked against the alerts of today.
/// Throws GenException when the repository fails.
[[nodiscard]] std::vector<AlertState> readAlertStates(PrViewer& viewer, int job);

} // namespace tavix
