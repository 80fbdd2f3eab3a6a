#pragma once

#include "profiling/JobRunner.h"
#include "profiling/RunEngine.h"

#include <string>

namespace tavix::profiling {

/// How the engine of a run works: as the options say, or else as suits the machine and the place of the repository.
[[nodiscard]] RunEngine::Settings engineSettings(const RunOptions& options, const std::string& repositoryPath);

} // namespace tavix::profiling
