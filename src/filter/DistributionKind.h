#pragma once

#include "report/DistributionKind.h"

#include <string_view>

namespace tavix {

/// The word by which the dialog names it, and the settings too.
[[nodiscard]] constexpr std::string_view KindWord(DistributionKind kind) {
    return kind == DistributionKind::Frequency ? "Frequency" : "Pattern";
}

} // namespace tavix
