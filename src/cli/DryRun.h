#pragma once

#include <string>

namespace tavix::profiling {
struct JobPlan;
}

namespace tavix::cli {

struct CommonOptions;

/// Lists what a run would read and compute, and how long the last run of the job took. Neither creates nor changes
/// the repository. CSV lists the tables only.
void listPlan(const CommonOptions& options, const profiling::JobPlan& plan, const std::string& repository);

} // namespace tavix::cli
