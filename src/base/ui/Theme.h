#pragma once

#include "base/DataFont.h"

#include <QColor>
#include <QFont>
#include <QPalette>

namespace tavix {

/// The chosen font; `own`, the font of the pane, gives what the user did not choose.
[[nodiscard]] QFont toQFont(const DataFont& chosen, const QFont& own);

[[nodiscard]] bool isDark(const QPalette& palette);
/// The colour `share` of the way from `from` to `to`, 0 to 1.
[[nodiscard]] QColor mixed(const QColor& from, const QColor& to, double share);
/// The colour of explanations: less prominent than labels, readable on the window's colour.
[[nodiscard]] QColor quietText(const QPalette& palette);

/// Complete palettes, used where Qt does not get one from the desktop.
[[nodiscard]] QPalette lightPalette();
[[nodiscard]] QPalette darkPalette();

} // namespace tavix
