#pragma once

#include "job/JobDescription.h"

#include <string>
#include <vector>

namespace tavix::profiling {

/// A file without rows, which a run leaves out.
struct EmptyFile {
    std::string path;
    std::string table;
    bool leavesTable = false; ///< the table has other files too

    bool operator==(const EmptyFile&) const = default;
};

/// "table "orders" is left out: PATH is empty".
[[nodiscard]] std::string emptyFileText(const EmptyFile& file);

struct JobWithoutEmptyFiles {
    job::JobDescription job;
    std::vector<EmptyFile> left; ///< what was left out, in the order of the job
};

/// The job without its empty files, without tables that have no other file, without the filtered tables over those, and
/// without their fields in collections. A job that would have no table left is returned unchanged. Pipes are not
/// examined.
[[nodiscard]] JobWithoutEmptyFiles withoutEmptyFiles(const job::JobDescription& job);

} // namespace tavix::profiling
