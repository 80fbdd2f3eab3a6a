#pragma once

#include <string>

namespace tavix::profiling {
struct JobDescription;
}

namespace tavix::cli {

struct CommonOptions;

/// Lists what a run of the job would read and compute, and how long the last one took. Neither makes nor changes the
/// repository; in csv the tables alone are listed.
void listPlan(const CommonOptions& options, const profiling::JobDescription& job, const std::string& repository);

} // namespace tavix::cli
