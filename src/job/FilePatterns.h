#pragma once

#include "base/Result.h"

#include <span>
#include <string>
#include <vector>

namespace tavix::job {

/// The files that are meant by a path whose parts may hold `*`, `?` and `[...]`, by name in the order of their bytes.
/// A path that exists, or that holds none of these, is meant as it stands. Hidden files and folders match no pattern
/// that does not begin with a dot. An error when nothing matches, or more than 100,000 files do.
[[nodiscard]] Result<std::vector<std::string>> matchingFiles(const std::string& path);

/// Whether the path as it stands is no file and holds what makes it a pattern.
[[nodiscard]] bool isPattern(const std::string& path);

/// The files of a folder, in the order of their names, hidden ones and those in folders below it left out. An error
/// when it has none.
[[nodiscard]] Result<std::vector<std::string>> filesOfFolder(const std::string& folder);

/// The name of a table that is made of the file: the file's without its ending, and without that of a compressed file.
[[nodiscard]] std::string tableNameOf(const std::string& path);

/// Paths as one text for people.
[[nodiscard]] std::string joinedPaths(std::span<const std::string> paths);

} // namespace tavix::job
