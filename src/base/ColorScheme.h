#pragma once

#include <string_view>

namespace tavix {

/// The colours of the windows: those of the desktop, or always light or dark.
enum class ColorScheme { Desktop, Light, Dark };

/// The scheme's word in settings and options: "light", "dark", and "" for the desktop's.
[[nodiscard]] constexpr std::string_view colorSchemeWord(ColorScheme scheme) {
    switch (scheme) {
    case ColorScheme::Light:
        return "light";
    case ColorScheme::Dark:
        return "dark";
    case ColorScheme::Desktop:
        break;
    }
    return {};
}

/// The scheme of that word; the desktop's for any other text.
[[nodiscard]] constexpr ColorScheme colorSchemeOf(std::string_view word) {
    for (const ColorScheme scheme : {ColorScheme::Light, ColorScheme::Dark}) {
        if (word == colorSchemeWord(scheme))
            return scheme;
    }
    return ColorScheme::Desktop;
}

} // namespace tavix
