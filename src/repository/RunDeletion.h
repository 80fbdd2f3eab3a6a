#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>

namespace tavix::repository {

/// Deletes the runs of a job with `first` <= id <= `last`; -1: no bound. The runs become invisible in one small change;
/// then their rows are deleted and the space is freed in bounded steps. If the program dies in between, the next
/// opening for writing completes the deletion. At least one run of the job must remain.
[[nodiscard]] Status deleteRuns(sql::Connection& connection, int job, int first, int last);

/// Completes earlier deletions.
[[nodiscard]] Status sweepDeletedRuns(sql::Connection& connection);

} // namespace tavix::repository
