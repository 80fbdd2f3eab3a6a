#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace tavix::repository {

/// The figures of an earlier run about a field that a later one is compared with.
struct EarlierField {
    UtcTime started{}; ///< when that run began
    char typeCode = 0; ///< 0 without values
    std::optional<std::int64_t> precision{};
    std::string maximum{}; ///< the maximum value as a text; empty without one
    std::int64_t nonNullCount = 0;
};

/// The fields of a table in the last run of the job before `run` that has it, by name; none in its first run.
[[nodiscard]] Result<std::map<std::string, EarlierField, std::less<>>>
readEarlierFields(sql::Connection& connection, std::string_view job, int run, int table);

} // namespace tavix::repository
