#pragma once

#include <QColor>
#include <QPalette>

#include <cstddef>

/// Colours without a palette role, derived from the palette to suit light and dark ones.
namespace tavix::tint {

/// Hairlines between areas.
[[nodiscard]] QColor line(const QPalette& palette);
/// Marks what needs attention at once. A raised alert that is only a warning has accentWarm().
[[nodiscard]] QColor alert(const QPalette& palette);
/// The bar behind a cell's text, on the cell's background. Text keeps its contrast on it.
[[nodiscard]] QColor bar(const QPalette& palette, const QColor& background, bool onSelection);
/// The colours of selected rows and nodes; paler while their list does not have the focus.
struct Selection {
    QColor background;
    QColor text;
};
[[nodiscard]] Selection selection(const QPalette& palette, bool hasFocus);
/// The parts of a bar, by number: what is missing, what is there without saying anything, what is filled. Further
/// parts repeat the tints.
[[nodiscard]] QColor part(const QPalette& palette, const QColor& background, std::size_t number);
/// The bars of an earlier and a later run, one above the other in a cell. They differ in lightness as well as in hue.
[[nodiscard]] QColor barBefore(const QPalette& palette, const QColor& background, bool onSelection);
[[nodiscard]] QColor barAfter(const QPalette& palette, const QColor& background, bool onSelection);
/// The colours of icons.
[[nodiscard]] QColor accent(const QPalette& palette);
[[nodiscard]] QColor accentWarm(const QPalette& palette);
[[nodiscard]] QColor accentCool(const QPalette& palette);

} // namespace tavix::tint
