#pragma once

#include <sys/types.h>

#include <string>

namespace tavix {

/// The permissions of the file at `path`, which is to be replaced, or those that a new file gets.
[[nodiscard]] mode_t modeOfReplaced(const std::string& path);

} // namespace tavix
