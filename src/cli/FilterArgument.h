#pragma once

#include <string>

namespace tavix::cli {

/// Resolves the argument of --filter: the filter in the ".flt" or text file of that name, or the argument itself when
/// there is no such file. "" means no filter. Throws CommandError.
[[nodiscard]] std::string filterTextOf(const std::string& argument);

} // namespace tavix::cli
