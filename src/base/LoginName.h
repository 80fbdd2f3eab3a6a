#pragma once

#include <string>

namespace tavix {

/// The name under which the user is logged in to the system; "user N" for one whom the system knows by number only.
[[nodiscard]] std::string loginName();

} // namespace tavix
