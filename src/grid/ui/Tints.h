#pragma once

#include <QColor>
#include <QPalette>

/// Colours without a palette role, derived from the palette to suit light and dark ones.
namespace tavix::tint {

/// Hairlines between areas.
[[nodiscard]] QColor line(const QPalette& palette);
/// Marks a figure that an alert watches.
[[nodiscard]] QColor alert(const QPalette& palette);
/// The bar behind a cell's text, on the cell's background. Text keeps its contrast on it.
[[nodiscard]] QColor bar(const QPalette& palette, const QColor& background, bool onSelection);
/// The bars of an earlier and a later run, one above the other in a cell. They differ in lightness as well as in hue.
[[nodiscard]] QColor barBefore(const QPalette& palette, const QColor& background, bool onSelection);
[[nodiscard]] QColor barAfter(const QPalette& palette, const QColor& background, bool onSelection);
/// The colours of icons.
[[nodiscard]] QColor accent(const QPalette& palette);
[[nodiscard]] QColor accentWarm(const QPalette& palette);
[[nodiscard]] QColor accentCool(const QPalette& palette);

} // namespace tavix::tint
