#pragma once

#include <string>

namespace tavix::cli {

/// The repository that a command works on: the one that was named, else that of the environment variable
/// TAVIX_REPOSITORY, else the only *.tavix in the current folder, which standard error then names; "" when there is
/// none of these. Throws CommandError when the folder has several.
[[nodiscard]] std::string chosenRepository(const std::string& named);
/// The same; throws CommandError also when there is none.
[[nodiscard]] std::string requiredRepository(const std::string& named);

} // namespace tavix::cli
