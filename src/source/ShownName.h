#pragma once

#include <string>
#include <string_view>

namespace tavix::source {

/// The name of a column for a message: shortened if long, with U+FFFD for each control character and each byte that is
/// not UTF-8; the first row of a file that is not a table may contain many.
[[nodiscard]] std::string shownName(std::string_view name);

} // namespace tavix::source
