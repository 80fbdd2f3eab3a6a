#pragma once

#include "base/DataFont.h"

#include <QColor>
#include <QFont>
#include <QPalette>

namespace tavix {

/// `own` is the font of the pane, kept in all that the user did not choose.
[[nodiscard]] QFont toQFont(const DataFont& chosen, const QFont& own);

[[nodiscard]] bool isDark(const QPalette& palette);
/// The colour `share` of the way from `from` to `to`, 0 to 1.
[[nodiscard]] QColor mixed(const QColor& from, const QColor& to, double share);
/// For text that explains: legible on the window's colour, quieter than a label.
[[nodiscard]] QColor quietText(const QPalette& palette);

/// Whole schemes, for a desktop that does not tell Qt its own.
[[nodiscard]] QPalette lightPalette();
[[nodiscard]] QPalette darkPalette();

} // namespace tavix
