#pragma once

#include "base/Result.h"
#include "repository/Facts.h"
#include "sql/Connection.h"

#include <string_view>

/// The ids of jobs, data sources, tables and fields, which are the same in every run of every job.
namespace tavix::repository {

/// The name of a table in messages: the object name, else the table name.
[[nodiscard]] std::string_view displayName(const TableFacts& table);

// Finds or creates the id, within the caller's transaction.
[[nodiscard]] Result<int> jobIdentity(sql::Connection& connection, std::string_view name, std::string_view description,
                                      UtcTime now);
[[nodiscard]] Result<int> dataSourceIdentity(sql::Connection& connection, std::string_view name, SourceKind kind);
[[nodiscard]] Result<int> tableIdentity(sql::Connection& connection, int dataSource, const TableFacts& table);
[[nodiscard]] Result<int> fieldIdentity(sql::Connection& connection, int table, std::string_view name);

/// The id of a field that is in the run's table; `missing` is the error if none has this name.
[[nodiscard]] Result<int> fieldOfRun(sql::Connection& connection, int run, int table, std::string_view name,
                                     const Error& missing);

} // namespace tavix::repository
