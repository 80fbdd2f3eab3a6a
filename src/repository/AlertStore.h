#pragma once

#include "base/Result.h"
#include "repository/AlertFacts.h"
#include "sql/Connection.h"

#include <span>

/// Alerts are kept as what a job says of them, with the rule as properties: METRIC, COMPARE, VALUE1, VALUE2, and of our
/// own JOB (its id), LEVEL, RUNS and RECORDS. Whether one is raised follows from the figures of a run and is not kept.
namespace tavix::repository {

struct StoredAlert {
    int table = -1;
    int field = -1; ///< of a standard metric
    std::string fieldName;
    const AlertFacts* facts = nullptr;
};

/// Puts these in the place of the alerts that the job had, within the caller's transaction. Custom metrics and rules
/// must have been stored.
[[nodiscard]] Status replaceAlerts(sql::Connection& connection, int job, std::span<const StoredAlert> alerts);

} // namespace tavix::repository
