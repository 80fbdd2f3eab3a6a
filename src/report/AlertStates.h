#pragma once

#include "base/AlertDefinition.h"
#include "base/LibraryDate.h"
#include "base/TableKind.h"
#include "report/FitFigures.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix {

class PrViewer;

/// How an alert is shown, in the order of lists.
enum class AlertShown { Raised, CannotBeJudged, Muted, Quiet };

/// "raised", "cannot be judged", "muted" or "quiet".
[[nodiscard]] std::string_view alertShownWord(AlertShown shown);

/// A user's decision not to be warned by an alert for some time.
struct AlertMute {
    std::string reason;
    std::string author;
    LibraryDate date = 0;
    int runs = 0;                     ///< for so many runs; 0: no such end
    std::optional<LibraryDate> until; ///< for runs that start before this; none: no such end
};

/// The sentence of an alert without a rule.
inline constexpr std::string_view kNoAlertRule = "Unable to retrieve alert properties";

/// An alert of the repository, judged for a run.
struct AlertState {
    int id = -1;
    int job = -1; ///< whose runs it watches; -1 when the alert does not say
    int run = -1; ///< that was judged; -1 if the job has none
    std::string dataSource;
    std::string catalog;
    std::string schema;
    std::string tableName;  ///< without the object name
    std::string objectName; ///< of a table of a query or filter
    TableKind kind = TableKind::Plain;
    std::string typeCode; ///< as stored
    std::string key;      ///< of the custom metric or rule
    std::string table;    ///< as shown
    AlertSubject subject = AlertSubject::StandardMetric;
    std::string input; ///< the field, or the name of the custom metric or rule, by CAlertDisplayHelper
    bool isOfRecords =
        false;          ///< it watches the number of records of the table, which is stored as the Count of that field
    std::string metric; ///< the name of the metric or of the custom metric's value; empty for a rule
    std::string description;
    bool isOfUser = false;          ///< a user made it; otherwise the job defines it
    std::string author;             ///< of a user's alert
    LibraryDate created = 0;        ///< of a user's alert
    std::optional<AlertRule> rule;  ///< nothing when the properties are missing or invalid
    std::string sentence;           ///< the condition in words, or kNoAlertRule
    std::optional<FitFigures> fits; ///< when the figure is over the values that fit a narrower type
    std::optional<double> figure;   ///< of the run
    AlertVerdict verdict;
    /// Of a raised alert: the runs in a row that raise it, up to this one; 0 otherwise.
    int raisedRuns = 0;
    bool raisedLonger = false; ///< it may be more than raisedRuns, since no more of the past was read
    int sinceRun = -1;         ///< the first of them
    LibraryDate sinceDate = 0;
    std::optional<AlertMute> mute; ///< if it holds for this run
    int tableId = -1;
    int fieldId = -1;   ///< of a standard metric
    int watchedId = -1; ///< of the standard metric, the custom metric or the rule

    /// The sentence, with a mark if the figure is over the values that fit a narrower type.
    [[nodiscard]] std::string condition() const;
    [[nodiscard]] AlertShown shown() const;
    /// Raised and not muted.
    [[nodiscard]] bool isRaised() const { return shown() == AlertShown::Raised; }
    /// Raised, and of this level or a higher one.
    [[nodiscard]] bool isRaisedAt(AlertLevel level) const { return isRaised() && rule->level >= level; }
    /// Whether the user has described it; otherwise the description is the sentence.
    [[nodiscard]] bool isDescribed() const { return !description.empty() && description != sentence; }
    [[nodiscard]] AlertDefinition definition() const;
};

/// The alerts of a job, those of its file in their order and then those of users, judged for the current run, or for
/// the latest run of a job that is not current. Verdicts are not stored: an earlier run is judged by the present
/// alerts, and no verdict depends on later runs. The number of queries depends on jobs, and on tables whose alerts
/// watch figures that may be over what fits, but not on alerts or runs. Throws GenException when the repository fails.
[[nodiscard]] std::vector<AlertState> readAlertStates(PrViewer& viewer, int job);

/// The alerts of all jobs: those of the current job judged for the current run, others for the latest run of their job.
[[nodiscard]] std::vector<AlertState> readAllAlertStates(PrViewer& viewer);
/// The same. If the repository fails, `states` has the alerts that were read so far, perhaps not yet judged.
void readAllAlertStates(PrViewer& viewer, std::vector<AlertState>& states);

/// Raised ones first, errors before warnings, then in the order of AlertShown; otherwise the order is kept.
void orderAlerts(std::vector<AlertState>& alerts);

/// How many alerts are raised.
struct AlertCounts {
    int errors = 0;
    int warnings = 0;
    int muted = 0;
    int unjudged = 0;
    int quiet = 0;

    void add(const AlertState& alert);
    [[nodiscard]] int raised() const { return errors + warnings; }
    bool operator==(const AlertCounts&) const = default;
};
[[nodiscard]] AlertCounts countAlerts(const std::vector<AlertState>& alerts);

} // namespace tavix
