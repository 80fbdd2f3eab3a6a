#pragma once

#include "job/JobDescription.h"
#include "profiling/Databases.h"
#include "profiling/OpenedSource.h"

#include <string>
#include <vector>

/// Checks of a job's sources before any row is read. Runs and plans share them.
namespace tavix::profiling {

/// The table and the filtered tables over it, in the order of the job.
[[nodiscard]] std::vector<const job::TableDescription*> tablesOver(const job::JobDescription& job,
                                                                   const job::TableDescription& base);

/// Checks that the fields named by the table, by those over it and by the job's collections exist.
[[nodiscard]] Status checkFieldsOver(const job::JobDescription& job, const job::TableDescription& base,
                                     std::span<const std::string> columns);

/// The error with the table's name in front.
[[nodiscard]] Error failureIn(const job::TableDescription& table, const Error& error);

/// Opens the files of a table and checks that they have the same columns, with the fields that the job names.
[[nodiscard]] Result<OpenedFiles> openCheckedFiles(const job::JobDescription& job, const job::TableDescription& table,
                                                   source::KeepGoing keepGoing = {});
/// Does the same for a database table.
[[nodiscard]] Result<OpenedDatabaseTable> openCheckedDatabase(const job::JobDescription& job,
                                                              const job::TableDescription& table, Databases& databases);

} // namespace tavix::profiling
