#pragma once

#include "base/Result.h"
#include "repository/Facts.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavix::profiling {

/// A table of a job: a text file for now.
struct TableDescription {
    std::string name;              ///< unique in the job; a file's name without its ending unless stated
    std::string path;              ///< absolute
    std::optional<char> delimiter; ///< found in the file when not stated
    bool hasHeader = true;

    bool operator==(const TableDescription&) const = default;
};

/// What a job profiles. Read from a job file or made from the names of text files.
struct JobDescription {
    std::string name;
    std::string description;
    std::string repository; ///< where the results go; "" when the command says so
    std::string dataSource; ///< name of the data source; the folder of the first file unless stated
    std::vector<TableDescription> tables;
    std::vector<repository::CollectionFacts> collections;
};

/// Reads a YAML job file, checked against the schema that is shipped as share/job.schema.json. Paths in it are relative
/// to the file. Errors read "FILE:LINE:COLUMN: what is wrong". Files beyond 1 MiB are refused.
[[nodiscard]] Result<JobDescription> readJobFile(const std::string& path);

/// A job over text files as they are. An empty `name` takes the first file's name without its ending.
[[nodiscard]] Result<JobDescription> describeFiles(std::span<const std::string> files, const std::string& name,
                                                   std::optional<char> delimiter, bool hasHeader);

} // namespace tavix::profiling
