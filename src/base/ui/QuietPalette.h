#pragma once

#include "base/ui/Theme.h"

#include <QPalette>

namespace tavix {

/// The palette with quiet texts, for labels that explain.
[[nodiscard]] inline QPalette quietPalette(const QPalette& palette) {
    QPalette quiet = palette;
    quiet.setColor(QPalette::WindowText, quietText(palette));
    quiet.setColor(QPalette::Text, quietText(palette));
    return quiet;
}

} // namespace tavix
