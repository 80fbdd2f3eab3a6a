#pragma once

#include "report/DistributionKind.h"

#include <string_view>

namespace tavix {

/// The word for it in the dialog and in the settings.
[[nodiscard]] constexpr std::string_view KindWord(DistributionKind kind) {
    return kind == DistributionKind::Frequency ? "Frequency" : "Pattern";
}

} // namespace tavix
