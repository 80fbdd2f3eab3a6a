#pragma once

#include "base/Result.h"

#include <string>

namespace tavix::repository {

/// Whether openRepository() could make or change the repository at `path`, as far as can be told without opening it.
[[nodiscard]] Status checkWritablePlace(const std::string& path);

} // namespace tavix::repository
