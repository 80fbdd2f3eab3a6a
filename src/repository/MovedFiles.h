#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <cstdint>
#include <string>
#include <vector>

/// Where files are that were moved after a run read them.
namespace tavix::repository {

/// A file as a run read it.
struct ReadFile {
    std::string path;
    std::int64_t size = -1;     ///< bytes; -1: unknown
    std::int64_t modified = -1; ///< see storedTime(); -1: unknown

    bool operator==(const ReadFile&) const = default;
};

struct MovedFile {
    ReadFile file;
    std::string newPath;
};

/// The newest first; empty in a repository older than version 6.
[[nodiscard]] Result<std::vector<MovedFile>> readMovedFiles(sql::Connection& connection);
/// Replaces the entry of this file, within the caller's transaction.
[[nodiscard]] Status storeMovedFile(sql::Connection& connection, const MovedFile& moved, UtcTime now);

/// Every file that a run read at this path, by size and time.
[[nodiscard]] Result<std::vector<ReadFile>> filesReadAt(sql::Connection& connection, const std::string& path);

} // namespace tavix::repository
