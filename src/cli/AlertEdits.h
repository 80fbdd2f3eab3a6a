#pragma once

#include "base/AlertDefinition.h"
#include "report/AlertStates.h"

#include <optional>
#include <string>
#include <vector>

namespace tavix::cli {

class Session;
struct CommonOptions;

/// An alert that a user has typed.
struct TypedAlert {
    AlertDefinition definition;
    std::string sentence; ///< the condition in words
};

/// Reads an entry of a job file about a table of the current run: one alert for each of its fields. Throws CommandError
/// with ExitCode::Usage for a mistake.
[[nodiscard]] std::vector<TypedAlert> readTypedAlerts(Session& session, const std::string& entry,
                                                      const std::string& table);

/// Stores alerts of the user, all or none, and returns their ids.
std::vector<int> addAlerts(Session& session, const std::vector<TypedAlert>& alerts);

/// A mute as --mute, --for and --until say it.
struct MuteRequest {
    std::string reason;
    int runs = 0;
    std::optional<std::string> until;
};

/// The start of the day, or the time, in local time. Throws CommandError for another text.
[[nodiscard]] UtcTime readUntil(const std::string& text);
void muteAlert(Session& session, int alert, const MuteRequest& request);

/// Removes an alert of a user, after asking unless `isSure`. Throws CommandError for an alert of the job.
void removeAlert(Session& session, const AlertState& alert, bool isSure);

/// An alert with its changes and notes; in CSV only the alert.
void showAlert(Session& session, const CommonOptions& options, const AlertState& alert);

} // namespace tavix::cli
