#pragma once

#include <string>

namespace tavix::cli {

/// The repository of a command: the named one, else that of the environment variable TAVIX_REPOSITORY, else the only
/// *.tavix file in the current folder, which is then named on standard error; "" when there is none. Throws
/// CommandError when the folder has several.
[[nodiscard]] std::string chosenRepository(const std::string& named);
/// Like chosenRepository(), but throws CommandError when there is none.
[[nodiscard]] std::string requiredRepository(const std::string& named);

} // namespace tavix::cli
