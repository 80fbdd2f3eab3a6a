#pragma once

#include <cstdint>
#include <string>

namespace tavix {

/// "1,204 in the run, 1,198 now: the source changed since": the message for a value whose number of rows differs from
/// the run's; empty if it does not, or if the run does not record it (below 0). `now` must be of the whole source; a
/// reading that stopped at a limit cannot be compared.
[[nodiscard]] std::string sourceChangeText(std::int64_t inRun, std::int64_t now);

} // namespace tavix
