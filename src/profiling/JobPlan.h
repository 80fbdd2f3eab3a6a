#pragma once

#include "base/Result.h"
#include "job/JobDescription.h"
#include "profiling/EmptyFiles.h"
#include "source/Credentials.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix::profiling {

/// What a run would read of a table.
struct PlannedTable {
    const job::TableDescription* table = nullptr; ///< of the plan's job
    std::string reads;                  ///< a file, several, a table or query of a database, the rows of a table
    std::optional<std::int64_t> files;  ///< how many, of a table made of files
    std::optional<std::int64_t> bytes;  ///< of all files; none when one does not say, as a pipe does not
    std::optional<std::int64_t> fields; ///< none of a pipe, which cannot be looked into without reading it
    std::string sample;                 ///< which rows are taken; empty for all
};

struct JobPlan {
    job::JobDescription job; ///< without what is left out
    std::vector<PlannedTable> tables;
    std::vector<EmptyFile> leftOut;
    std::vector<std::string> remarks; ///< on expressions, as a run makes them

    JobPlan() = default;
    JobPlan(JobPlan&&) = default;
    JobPlan& operator=(JobPlan&&) = default;
};

/// Opens all that a run of the job would open and reads no further than a run's own check does; it fails where that
/// would, with the same words. A repository is neither made nor changed.
[[nodiscard]] Result<JobPlan> planJob(const job::JobDescription& job, const std::string& repositoryPath,
                                      source::AskCredentials ask, source::KeepGoing keepGoing = {});

} // namespace tavix::profiling
