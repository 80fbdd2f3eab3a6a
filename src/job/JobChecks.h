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

/// What is wrong with a name that is none of an encoding, with the nearest that is.
[[nodiscard]] std::string unknownEncoding(std::string_view name);

/// Characters. The schema of job files has the same limits.
inline constexpr std::size_t kLongestName = 1000;
inline constexpr std::size_t kLongestDescription = 10'000;

/// The name of a job or a table is neither blank nor too long. `what` is whose name it is: "job".
[[nodiscard]] Status checkName(std::string_view what, std::string_view name);
/// The same of a name that a user typed, which is UTF-8 too; that of a file need not be.
[[nodiscard]] Status checkGivenName(std::string_view what, std::string_view name);
[[nodiscard]] Status checkDescription(std::string_view what, std::string_view text);

/// A job can run: it and its tables have names that checkName() accepts, table names are unique, collections name
/// tables of the job.
[[nodiscard]] Status checkJob(const JobDescription& job);

/// The fields that the job's collections take from this table exist.
[[nodiscard]] Status checkCollectionFields(const JobDescription& job, std::string_view table,
                                           std::span<const std::string> columns);

} // namespace tavix::job
