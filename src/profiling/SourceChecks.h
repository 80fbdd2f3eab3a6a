#pragma once

#include "job/JobDescription.h"
#include "profiling/Databases.h"
#include "profiling/OpenedSource.h"

#include <string>
#include <vector>

/// What can be wrong with the sources of a job, found before a row is read. A run and a plan of one look at the same.
namespace tavix::profiling {

/// The table and those that are based on it, in the order of the job.
[[nodiscard]] std::vector<const job::TableDescription*> tablesOver(const job::JobDescription& job,
                                                                   const job::TableDescription& base);

/// The fields that the table, those over it and the job's collections speak of exist.
[[nodiscard]] Status checkFieldsOver(const job::JobDescription& job, const job::TableDescription& base,
                                     std::span<const std::string> columns);

/// An error with the table's name before it.
[[nodiscard]] Error failureIn(const job::TableDescription& table, const Error& error);

/// Opens the files of a table and finds them to have the same columns, among them those that the job speaks of.
[[nodiscard]] Result<OpenedFiles> openCheckedFiles(const job::JobDescription& job, const job::TableDescription& table,
                                                   source::KeepGoing keepGoing = {});
/// The same of a table of a database.
[[nodiscard]] Result<OpenedDatabaseTable> openCheckedDatabase(const job::JobDescription& job,
                                                              const job::TableDescription& table, Databases& databases);

} // namespace tavix::profiling
