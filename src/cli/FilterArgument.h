#pragma once

#include <string>

namespace tavix::cli {

/// The filter text that --filter means: what the file of this name holds, a ".flt" file or one of plain text, when
/// there is one, else the argument itself. Empty is no filter. Throws CommandError.
[[nodiscard]] std::string filterTextOf(const std::string& argument);

} // namespace tavix::cli
