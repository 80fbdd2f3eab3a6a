#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavix {

/// The mark of a figure by the alerts that watch it, the least grave first.
enum class AlertMark : std::uint8_t {
    None, ///< no alert watches it
    Quiet,
    Muted,
    CannotBeJudged,
    Warning, ///< raised
    Error,   ///< raised
};

/// For readers, after the figure: "alert raised, error"; "" for None.
[[nodiscard]] constexpr std::string_view alertMarkText(AlertMark mark) {
    constexpr std::array<std::string_view, 6> kTexts = {
        "", "alert, quiet", "alert, muted", "alert, cannot be judged", "alert raised, warning", "alert raised, error"};
    return kTexts[static_cast<std::size_t>(mark)];
}

} // namespace tavix
