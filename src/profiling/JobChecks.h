#pragma once

#include "base/NearestWord.h"
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

} // namespace tavix::profiling
