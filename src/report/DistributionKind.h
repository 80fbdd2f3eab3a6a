#pragma once

#include <string_view>

namespace tavix {

/// The two distributions of a field. Each has its own filter.
enum class DistributionKind { Frequency, Pattern };

/// The kind's name in the filter dialog and in the settings.
[[nodiscard]] constexpr std::string_view KindWord(DistributionKind kind) {
    return kind == DistributionKind::Frequency ? "Frequency" : "Pattern";
}

} // namespace tavix
