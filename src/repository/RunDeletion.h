#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>

namespace tavix::repository {

/// Deletes the runs of a job with `first` <= id <= `last`; -1 stands for no bound. They vanish for everybody at once,
/// in one small change; then their rows and the space are given back in bounded steps. When the program dies in
/// between, whoever opens the repository for writing next does the rest. At least one run of the job must stay.
[[nodiscard]] Status deleteRuns(sql::Connection& connection, int job, int first, int last);

/// Does what is left of earlier deletions.
[[nodiscard]] Status sweepDeletedRuns(sql::Connection& connection);

} // namespace tavix::repository
