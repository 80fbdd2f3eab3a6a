#pragma once

#include <string>

namespace tavix {

/// The user's login name; "user N" if the system only knows the user's number.
[[nodiscard]] std::string loginName();

} // namespace tavix
