#include "base/ui/Theme.h"

#include "base/ui/QtText.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

#include <algorithm>

namespace tavix {

namespace {

struct Scheme {
    QRgb window, base, alternate, button, text, placeholder, disabled, tip, highlight, highlighted, link;
};

constexpr Scheme kLight = {0xfff3f4f6, 0xffffffff, 0xfff6f7f9, 0xfffafbfc, 0xff1f2328, 0xff6b7280,
                           0xff9aa1ab, 0xffffffff, 0xff2563b8, 0xffffffff, 0xff1d5fae};
constexpr Scheme kDark = {0xff26282c, 0xff1c1e21, 0xff222428, 0xff33363b, 0xffe4e6e9, 0xff9aa1ab,
                          0xff767c85, 0xff33363b, 0xff3b78c9, 0xffffffff, 0xff7db3f2};

QPalette paletteOf(const Scheme& scheme) {
    // The constructor derives the shades of frames and bevels from the button and window colours.
    QPalette palette(QColor::fromRgb(scheme.button), QColor::fromRgb(scheme.window));
    struct Role {
        QPalette::ColorRole role;
        QRgb normal;
        QRgb disabled;
    };
    const Role roles[] = {
        {QPalette::Window, scheme.window, scheme.window},
        {QPalette::Base, scheme.base, scheme.window},
        {QPalette::AlternateBase, scheme.alternate, scheme.window},
        {QPalette::Button, scheme.button, scheme.window},
        {QPalette::WindowText, scheme.text, scheme.disabled},
        {QPalette::Text, scheme.text, scheme.disabled},
        {QPalette::ButtonText, scheme.text, scheme.disabled},
        {QPalette::PlaceholderText, scheme.placeholder, scheme.disabled},
        {QPalette::ToolTipBase, scheme.tip, scheme.tip},
        {QPalette::ToolTipText, scheme.text, scheme.text},
        {QPalette::Highlight, scheme.highlight, scheme.disabled},
        {QPalette::HighlightedText, scheme.highlighted, scheme.window},
        {QPalette::Link, scheme.link, scheme.disabled},
    };
    for (const Role& each : roles) {
        palette.setColor(each.role, QColor::fromRgb(each.normal));
        palette.setColor(QPalette::Disabled, each.role, QColor::fromRgb(each.disabled));
    }
    return palette;
}

} // namespace

QFont toQFont(const DataFont& chosen, const QFont& own) {
    QFont font(own);
    if (!chosen.name.empty())
        font.setFamilies({toQString(chosen.name)});
    font.setPointSizeF(std::clamp(chosen.tenthsOfPoint, 10, 2000) / 10.0);
    font.setBold(chosen.bold);
    font.setItalic(chosen.italic);
    return font;
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

QColor mixed(const QColor& from, const QColor& to, double share) {
    const auto part = [share](int a, int b) { return static_cast<int>(a + (b - a) * std::clamp(share, 0.0, 1.0)); };
    return {part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue())};
}

QColor quietText(const QPalette& palette) {
    return mixed(palette.color(QPalette::WindowText), palette.color(QPalette::Window), 0.35);
}

QPalette withPaleSelection(const QPalette& palette) {
    QPalette pale = palette;
    const QColor base = palette.color(QPalette::Base);
    pale.setColor(QPalette::Highlight, mixed(base, palette.color(QPalette::Highlight), isDark(palette) ? 0.38 : 0.22));
    pale.setColor(QPalette::HighlightedText, palette.color(QPalette::Text));
    return pale;
}

QPalette lightPalette() {
    return paletteOf(kLight);
}

QPalette darkPalette() {
    return paletteOf(kDark);
}

void applyColorScheme(ColorScheme scheme) {
    // Later the application's palette is one of ours.
    static const bool isDesktopDark = isDark(QApplication::palette());
    const bool dark = scheme == ColorScheme::Dark || (scheme == ColorScheme::Desktop && isDesktopDark);
    QApplication::setPalette(dark ? darkPalette() : lightPalette());
    // Qt tells the widgets only while QApplication::exec runs, which a shell without Qt never calls.
    QEvent changed(QEvent::ApplicationPaletteChange);
    for (QWidget* widget : QApplication::allWidgets())
        QApplication::sendEvent(widget, &changed);
}

} // namespace tavix
