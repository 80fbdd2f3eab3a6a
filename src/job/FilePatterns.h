#pragma once

#include "base/Result.h"

#include <span>
#include <string>
#include <vector>

namespace tavix::job {

/// The files that match a path whose parts may have `*`, `?` and `[...]`, sorted by the bytes of their names. A path
/// that exists, or has none of these, means itself. Hidden files and folders match only patterns that begin with a dot.
/// Fails when nothing matches, or more than 100,000 files do.
[[nodiscard]] Result<std::vector<std::string>> matchingFiles(const std::string& path);

/// Whether the path does not exist and has characters of a pattern.
[[nodiscard]] bool isPattern(const std::string& path);

/// The files of a folder, sorted by name, without hidden files and subfolders. Fails when there are none.
[[nodiscard]] Result<std::vector<std::string>> filesOfFolder(const std::string& folder);

/// The name of a table for the file: the file name without its extension, and without that of a compressed file.
[[nodiscard]] std::string tableNameOf(const std::string& path);

/// Paths as one text for users.
[[nodiscard]] std::string joinedPaths(std::span<const std::string> paths);

} // namespace tavix::job
