#pragma once

#include "report/AlertStates.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::cli {

struct CommonOptions;

/// "warning" or "error"; nothing for another word.
[[nodiscard]] std::optional<AlertLevel> parseAlertLevel(const std::string& word);

void listAlerts(const CommonOptions& options, const std::vector<AlertState>& alerts);

/// Lists on standard error the alerts that are raised and those that could not be checked, in their order.
void sayAlerts(const std::vector<AlertState>& alerts);

/// Warns on standard error that --fail-at has no effect on a job without alerts.
void sayIfNoAlert(const std::vector<AlertState>& alerts, std::string_view job);

/// Throws CommandError with ExitCode::Alert when an alert is raised at this level or a higher one.
void failOnAlerts(const std::vector<AlertState>& alerts, AlertLevel level);

} // namespace tavix::cli
