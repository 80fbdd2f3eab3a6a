#pragma once

#include <string_view>

namespace tavix {

/// The two distributions of a field; each has a filter of its own.
enum class DistributionKind { Frequency, Pattern };

/// The word by which the dialog names it, and the settings too.
[[nodiscard]] constexpr std::string_view KindWord(DistributionKind kind) {
    return kind == DistributionKind::Frequency ? "Frequency" : "Pattern";
}

} // namespace tavix
