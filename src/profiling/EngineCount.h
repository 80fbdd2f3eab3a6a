#pragma once

#include "profiling/Databases.h"
#include "profiling/RunEngine.h"
#include "profiling/TablePass.h"
#include "source/Credentials.h"

#include <functional>

namespace tavix::profiling {

/// Fills the values of a pass from the database engine, with one statement for each column. Returns false, and forgets
/// the values, when the result may differ from reading the rows: because the table is changing, or has bytes that are
/// not UTF-8. Fails with source::kCancelled when `keepGoing` returns false. After each block of distinct values calls
/// `counted` with the rows counted so far.
[[nodiscard]] Result<bool> countInEngine(const OpenedDatabaseTable& opened, TablePass& pass, RunEngine& engine,
                                         const source::KeepGoing& keepGoing,
                                         const std::function<void(std::int64_t)>& counted);

} // namespace tavix::profiling
