#pragma once

#include "base/NearestWord.h"
#include "base/Result.h"
#include "job/JobDescription.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::job {

/// The message about an unknown encoding, with the nearest known name.
[[nodiscard]] std::string unknownEncoding(std::string_view name);

/// Characters. The schema of job files states the same limits.
inline constexpr std::size_t kLongestName = 1000;
inline constexpr std::size_t kLongestDescription = 10'000;

/// Checks that a name is neither blank nor too long. `what`: what it names, such as "job".
[[nodiscard]] Status checkName(std::string_view what, std::string_view name);
/// Checks a name that a user typed; it must also be UTF-8, which a file name need not be.
[[nodiscard]] Status checkGivenName(std::string_view what, std::string_view name);
[[nodiscard]] Status checkDescription(std::string_view what, std::string_view text);

/// Checks that a job can run: the names of the job and its tables are valid, table names are unique, and collections
/// refer to tables of the job.
[[nodiscard]] Status checkJob(const JobDescription& job);

/// Checks that the fields exist that the job's collections take from this table.
[[nodiscard]] Status checkCollectionFields(const JobDescription& job, std::string_view table,
                                           std::span<const std::string> columns);

} // namespace tavix::job
