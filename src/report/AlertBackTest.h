#pragma once

#include "base/AlertDefinition.h"
#include "base/LibraryDate.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// A run in a back-test.
struct BackTestRun {
    int id = -1;
    LibraryDate date = 0;
    int weekday = 1; ///< of its start by UTC, 1 Monday to 7 Sunday
    std::optional<double> figure;
    AlertVerdict verdict;
};

/// In which stored runs an alert would have been raised; mutes take no part.
struct AlertBackTest {
    std::vector<BackTestRun> runs; ///< the oldest first
    int judged = 0;                ///< that have the figure and what it is compared with
    int raised = 0;
};

/// The figures that an alert watches in the runs of the current job up to the current one, the oldest first and not yet
/// judged; read with one query. The rule decides only whether a rule's rows or percentage is read. Throws GenException.
[[nodiscard]] std::vector<BackTestRun> readWatchedFigures(PrViewer& viewer, const AlertDefinition& alert);

/// Judges the runs by the rule, each by the runs before it.
[[nodiscard]] AlertBackTest backTest(const AlertRule& rule, std::vector<BackTestRun> runs);

/// A limit that the history suggests.
struct LimitProposal {
    AlertComparison comparison = AlertComparison::Greater;
    double value1 = 0;
    double value2 = 0;  ///< of a range
    int raised = 0;     ///< how many of the runs it would have raised
    std::string reason; ///< "above all 24 runs", "above the 95th percentile of 24 runs"

    bool operator==(const LimitProposal&) const = default;
};

/// Limits that none or few of the runs would have passed: of the figures, or of their changes if the rule is one. None
/// for fewer than five runs; the first are those of the rule's own comparison. Numbers are rounded outwards to two
/// digits of the spread of the history, those of whole figures to whole numbers.
[[nodiscard]] std::vector<LimitProposal> proposeLimits(const AlertRule& rule, const std::vector<BackTestRun>& runs);

} // namespace tavix
