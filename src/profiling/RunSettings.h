#pragma once

#include "profiling/JobRunner.h"
#include "profiling/RunEngine.h"

#include <string>

namespace tavix::profiling {

/// The engine settings that the options state, or else that suit the machine and the location of the repository.
[[nodiscard]] RunEngine::Settings engineSettings(const RunOptions& options, const std::string& repositoryPath);

} // namespace tavix::profiling
