#pragma once

#include "base/ColorScheme.h"
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

/// `palette` for a list that does not have the focus: its selection is paler. Text keeps its contrast on it.
[[nodiscard]] QPalette withPaleSelection(const QPalette& palette);

/// Complete palettes, used where Qt does not get one from the desktop.
[[nodiscard]] QPalette lightPalette();
[[nodiscard]] QPalette darkPalette();

/// Gives the program's windows one of these palettes. Changes QApplication, so call it only for a program whose windows
/// all follow the user's choice. The desktop's colours are those of the first call.
void applyColorScheme(ColorScheme scheme);

} // namespace tavix
