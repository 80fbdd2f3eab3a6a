#pragma once

#include "profiling/Databases.h"
#include "profiling/RunEngine.h"
#include "profiling/TablePass.h"
#include "source/Credentials.h"

#include <functional>

namespace tavix::profiling {

/// Fills the values of a pass with what the engine counts, a statement for each column. False when the outcome cannot
/// be what reading the rows would give, because the table changes meanwhile or holds bytes that are no UTF-8; the
/// values are forgotten then. The error source::kCancelled after a false of `keepGoing`. `counted` is told how many
/// distinct values of how many rows came, after each block of them.
[[nodiscard]] Result<bool> countInEngine(const OpenedDatabaseTable& opened, TablePass& pass, RunEngine& engine,
                                         const source::KeepGoing& keepGoing,
                                         const std::function<void(std::int64_t)>& counted);

} // namespace tavix::profiling
