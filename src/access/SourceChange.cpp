#include "access/SourceChange.h"

#include "base/NumberText.h"

#include <fmt/format.h>

namespace tavix {

std::string sourceChangeText(std::int64_t inRun, std::int64_t now) {
    if (inRun == now || inRun < 0)
        return {};
    return fmt::format("{} in the run, {} now: the source changed since", formatGrouped(inRun), formatGrouped(now));
}

} // namespace tavix
