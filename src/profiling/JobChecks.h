#pragma once

#include "base/Result.h"
#include "profiling/JobDescription.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::profiling {

/// What is wrong with a name that is none of an encoding, with the nearest that is.
[[nodiscard]] std::string unknownEncoding(std::string_view name);

/// A job can run: it has a name and tables, table names are unique, collections name tables of the job.
[[nodiscard]] Status checkJob(const JobDescription& job);

/// The fields that the job's collections take from this table exist.
[[nodiscard]] Status checkCollectionFields(const JobDescription& job, std::string_view table,
                                           std::span<const std::string> columns);

/// Of `known` the word that `word` was probably meant to be; "" when none is near.
[[nodiscard]] std::string nearestWord(std::string_view word, std::span<const std::string> known);

/// " (did you mean "x"?)" or nothing.
[[nodiscard]] std::string suggestion(std::string_view word, std::span<const std::string> known);

} // namespace tavix::profiling
