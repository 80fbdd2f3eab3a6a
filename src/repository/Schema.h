#pragma once

#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>

/// The tables of a repository and their versions. docs/formats/repository.md describes them.
namespace tavix::repository {

/// "Tavx", marks a SQLite file as a repository.
inline constexpr std::int32_t kApplicationId = 0x54617678;

/// The oldest version that can be read without an update. A step that removes what a query needs raises it.
inline constexpr std::int32_t kOldestReadable = 1;

/// The scripts from version n to n + 1, from 0 on. A published one is never changed.
[[nodiscard]] std::span<const char* const> schemaSteps();

/// Opens the repository at `path`, which may begin with "sqlite:", and checks that it is one, of a version that this
/// program supports. For writing, updates an older version in one transaction and completes an interrupted deletion;
/// Create makes the repository if there is no file or an empty one. Never changes a file that is not a repository. If
/// another program holds it, a writer waits 5 seconds, or as long as `mayWait` returns true
/// (sql::Connection::waitWhile).
[[nodiscard]] Result<std::unique_ptr<sql::Connection>> openRepository(const std::string& path, sql::OpenMode mode,
                                                                      const std::function<bool()>& mayWait = {});

/// Whether openRepository() could make or change the repository at `path`, as far as is known without opening it.
[[nodiscard]] Status checkWritable(const std::string& path);

/// The check and the migration alone, for the given steps.
[[nodiscard]] Status prepareSchema(sql::Connection& connection, sql::OpenMode mode, std::span<const char* const> steps);

} // namespace tavix::repository
