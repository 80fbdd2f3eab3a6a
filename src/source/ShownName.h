#pragma once

#include <string>
#include <string_view>

namespace tavix::source {

/// The name of a column for a message: its beginning when it is long, U+FFFD for each control character and for each
/// byte that is not UTF-8, as the first row of a file that is not a table may have many.
[[nodiscard]] std::string shownName(std::string_view name);

} // namespace tavix::source
