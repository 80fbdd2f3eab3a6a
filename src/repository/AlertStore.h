#pragma once

#include "base/AlertDefinition.h"
#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>
#include <span>
#include <string_view>

/// Alerts, as their job defines them or as users make them; the rule is stored as properties (base/AlertProperties.h).
/// Whether an alert is raised is not stored; it follows from the metrics of a run. Each operation works within the
/// caller's transaction.
namespace tavix::repository {

/// The repository version that added the alerts of users, mutes, changes and notes.
inline constexpr std::int64_t kFirstUserAlerts = 10;

/// The custom metric or rule of this name in the table.
[[nodiscard]] Result<int> findWatched(sql::Connection& connection, int table, AlertSubject subject,
                                      std::string_view name);

/// Replaces the alerts that the job itself defines. An alert keeps its id as long as it watches the same figure: it
/// becomes the one with the same rule, else the one with the same comparison, else the first that is left. A rule that
/// differs from then on is a change at the time `changed`. Custom metrics and rules must already be stored.
[[nodiscard]] Status replaceAlerts(sql::Connection& connection, int job, std::span<const AlertDefinition> alerts,
                                   UtcTime changed);

/// `alert` -1 makes an alert of the job's runs that belongs to the user; another one keeps its job. Returns its id.
[[nodiscard]] Result<int> putUserAlert(sql::Connection& connection, int alert, int job,
                                       const AlertDefinition& definition, std::string_view user, UtcTime now);
/// With its mute, changes and notes.
[[nodiscard]] Status deleteUserAlert(sql::Connection& connection, int alert);

} // namespace tavix::repository
