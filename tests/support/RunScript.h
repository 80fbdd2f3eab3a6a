#pragma once

#include <string>

namespace tavix::testing {

/// Changes a repository with SQL: to damage it, or for content that no run writes. Throws std::runtime_error if the
/// script fails.
void runScript(const std::string& repository, const std::string& script);

} // namespace tavix::testing
