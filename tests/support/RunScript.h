#pragma once

#include <string>

namespace tavix::testing {

/// Changes a repository behind the viewer's back: to damage it, or to hold what no run writes. Throws
/// std::runtime_error when the script fails.
void runScript(const std::string& repository, const std::string& script);

} // namespace tavix::testing
