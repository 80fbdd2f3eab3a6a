#pragma once

#include <cstdint>
#include <string>

namespace tavix {

/// "1,204 in the run, 1,198 now: the source changed since": what to tell when a value occurs in its source another
/// number of times than the run counted; empty when it does not, or when the run cannot tell (below 0). `now` is of the
/// whole source; a reading that stopped at a limit has nothing to compare.
[[nodiscard]] std::string sourceChangeText(std::int64_t inRun, std::int64_t now);

} // namespace tavix
