#pragma once

#include "job/JobDescription.h"

#include <string>
#include <vector>

namespace tavix::profiling {

/// A file without a row, which a run leaves out.
struct EmptyFile {
    std::string path;
    std::string table;
    bool leavesTable = false; ///< the table is made of other files too

    bool operator==(const EmptyFile&) const = default;
};

/// "table "orders" is left out: PATH is empty".
[[nodiscard]] std::string emptyFileText(const EmptyFile& file);

struct JobWithoutEmptyFiles {
    job::JobDescription job;
    std::vector<EmptyFile> left; ///< what was taken from it, in the order of the job
};

/// The job without its empty files: without tables that are made of nothing else, those based on them, and their fields
/// in collections. A job that would have no table is left as it is. Pipes are not looked into.
[[nodiscard]] JobWithoutEmptyFiles withoutEmptyFiles(const job::JobDescription& job);

} // namespace tavix::profiling
