#pragma once

#include "base/KvbDatavar.h"
#include "report/AlertStates.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::cli {

class Listing;
struct CommonOptions;

/// The names of jobs by their ids.
using JobNames = std::map<int, std::string>;

/// Counts without decimals; null for none.
[[nodiscard]] KvbDatavar figureCell(const std::optional<double>& figure);
/// "raised", "quiet" or "cannot be judged".
[[nodiscard]] std::string verdictWord(const AlertVerdict& verdict);

/// "warning" or "error"; nothing for another word.
[[nodiscard]] std::optional<AlertLevel> parseAlertLevel(const std::string& word);

/// In text raised ones first and in columns for people; in the other formats in their order, with all that is known.
void listAlerts(const CommonOptions& options, std::vector<AlertState> alerts, const JobNames& jobs);
/// All that is known of an alert, as a record.
void listAlert(Listing& listing, const AlertState& alert, const JobNames& jobs);
/// The list of listAlerts() in JSON, of alerts of one job.
[[nodiscard]] std::string alertsJson(const std::vector<AlertState>& alerts, const std::string& job);

/// Lists on standard error the alerts that are raised and those that could not be checked, in their order.
void sayAlerts(const std::vector<AlertState>& alerts);

/// Warns on standard error that --fail-at has no effect on a job without alerts.
void sayIfNoAlert(const std::vector<AlertState>& alerts, std::string_view job);

/// Throws CommandError with ExitCode::Alert when an alert is raised at this level or a higher one.
void failOnAlerts(const std::vector<AlertState>& alerts, AlertLevel level);

} // namespace tavix::cli
