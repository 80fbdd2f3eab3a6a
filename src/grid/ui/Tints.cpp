#include "grid/ui/Tints.h"

#include "base/ui/Theme.h"

namespace tavix::tint {

QColor line(const QPalette& palette) {
    return mixed(palette.color(QPalette::Window), palette.color(QPalette::WindowText), isDark(palette) ? 0.16 : 0.14);
}

QColor alert(const QPalette& palette) {
    return isDark(palette) ? QColor(255, 122, 89) : QColor(217, 72, 38);
}

QColor bar(const QPalette& palette, const QColor& background, bool onSelection) {
    // Away from the text's lightness, so the text stays legible.
    if (onSelection) {
        const bool lightText = palette.color(QPalette::HighlightedText).lightness() > 127;
        return mixed(background, QColor(lightText ? Qt::black : Qt::white), 0.22);
    }
    return mixed(background, accent(palette), isDark(palette) ? 0.32 : 0.20);
}

Selection selection(const QPalette& palette, bool hasFocus) {
    const QColor strong = palette.color(QPalette::Highlight);
    if (hasFocus)
        return {strong, palette.color(QPalette::HighlightedText)};
    return {mixed(palette.color(QPalette::Base), strong, isDark(palette) ? 0.40 : 0.24), palette.color(QPalette::Text)};
}

QColor part(const QPalette& palette, const QColor& background, std::size_t number) {
    switch (number % 3) {
    case 0:
        return mixed(background, accentWarm(palette), 0.9);
    case 1:
        return mixed(background, accentWarm(palette), 0.4);
    default:
        return mixed(background, accent(palette), 0.45);
    }
}

QColor accent(const QPalette& palette) {
    return isDark(palette) ? QColor(110, 168, 254) : QColor(37, 99, 200);
}

QColor accentWarm(const QPalette& palette) {
    return isDark(palette) ? QColor(240, 180, 90) : QColor(190, 120, 20);
}

QColor accentCool(const QPalette& palette) {
    return isDark(palette) ? QColor(92, 201, 170) : QColor(20, 135, 105);
}

} // namespace tavix::tint
