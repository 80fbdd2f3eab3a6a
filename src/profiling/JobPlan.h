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

struct PlannedTable {
    const job::TableDescription* table = nullptr; ///< in the plan's job
    std::string reads;                  ///< a file, several, a table or query of a database, the rows of a table
    std::optional<std::int64_t> files;  ///< of a table made of files
    std::optional<std::int64_t> bytes;  ///< of all files; none when the size of one is unknown, as of a pipe
    std::optional<std::int64_t> fields; ///< none of a pipe, which cannot be examined without consuming it
    std::string sample;                 ///< empty: all rows
};

struct JobPlan {
    job::JobDescription job; ///< without the files and tables left out
    std::vector<PlannedTable> tables;
    std::vector<EmptyFile> leftOut;
    std::vector<std::string> remarks; ///< on expressions, as a run reports them

    JobPlan() = default;
    JobPlan(JobPlan&&) = default;
    JobPlan& operator=(JobPlan&&) = default;
};

/// Opens everything that a run of the job would open and reads as much as the checks before a run do. Fails where those
/// would, with the same message. Neither creates nor changes a repository.
[[nodiscard]] Result<JobPlan> planJob(const job::JobDescription& job, const std::string& repositoryPath,
                                      source::AskCredentials ask, source::KeepGoing keepGoing = {});

} // namespace tavix::profiling
