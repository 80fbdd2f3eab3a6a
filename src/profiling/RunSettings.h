#pragma once

#include "base/Clock.h"
#include "profiling/JobRunner.h"
#include "profiling/RunEngine.h"

#include <string>

namespace tavix::profiling {

/// The engine settings that the options state, or else that suit the machine and the location of the repository. `now`:
/// the moment of the run.
[[nodiscard]] RunEngine::Settings engineSettings(const RunOptions& options, const std::string& repositoryPath,
                                                 UtcTime now);

} // namespace tavix::profiling
