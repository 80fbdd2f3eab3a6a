#pragma once

#include "base/Result.h"
#include "repository/AlertFacts.h"
#include "sql/Connection.h"

#include <span>

/// Stores alerts as their job defines them. The rule is stored as properties: METRIC, COMPARE, VALUE1, VALUE2, and our
/// own JOB (its id), LEVEL, RUNS and RECORDS. Whether an alert is raised is not stored; it follows from the metrics of
/// a run.
namespace tavix::repository {

struct StoredAlert {
    int table = -1;
    int field = -1; ///< of a standard metric
    std::string fieldName;
    const AlertFacts* facts = nullptr;
};

/// Replaces the alerts of the job, within the caller's transaction. Custom metrics and rules must already be stored.
[[nodiscard]] Status replaceAlerts(sql::Connection& connection, int job, std::span<const StoredAlert> alerts);

} // namespace tavix::repository
