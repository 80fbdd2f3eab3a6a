#pragma once

#include "base/Histogram.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <optional>

namespace tavix::repository {

/// Within the caller's transaction.
[[nodiscard]] Status storeHistogram(sql::Connection& connection, int run, int field, const Histogram& histogram);

/// The histogram of a field in a run; nothing if the run stored none, as in a repository of an older version. Fails if
/// it is damaged.
[[nodiscard]] Result<std::optional<Histogram>> readHistogram(sql::Connection& connection, int run, int field);

} // namespace tavix::repository
