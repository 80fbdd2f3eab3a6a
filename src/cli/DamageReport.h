#pragma once

#include "profiling/JobRunner.h"

#include <string>

namespace tavix::cli {

/// "birdstrikes.csv: 3 damaged rows; line 17: too few cells (3 of 14), ..."; lists five rows at most. "" without
/// damage.
[[nodiscard]] std::string damageText(const std::string& file, const profiling::TableOutcome& outcome);

} // namespace tavix::cli
