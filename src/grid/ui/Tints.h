#pragma once

#include <QColor>
#include <QPalette>

/// Colours that are no palette roles of their own, derived from the palette so that they suit a light and a dark one.
namespace tavix::tint {

/// Hair lines between areas.
[[nodiscard]] QColor line(const QPalette& palette);
/// Marks a figure that an alert watches.
[[nodiscard]] QColor alert(const QPalette& palette);
/// A bar behind the text of a cell, on the colour that the cell is filled with. Text keeps its contrast upon it.
[[nodiscard]] QColor bar(const QPalette& palette, const QColor& background, bool onSelection);
/// The colour of small pictures.
[[nodiscard]] QColor accent(const QPalette& palette);
[[nodiscard]] QColor accentWarm(const QPalette& palette);
[[nodiscard]] QColor accentCool(const QPalette& palette);

} // namespace tavix::tint
