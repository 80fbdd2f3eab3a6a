#include "base/ui/Theme.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tavix {
namespace {

double luminance(const QColor& color) {
    const auto part = [](double value) {
        return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * part(color.redF()) + 0.7152 * part(color.greenF()) + 0.0722 * part(color.blueF());
}

double contrast(const QColor& a, const QColor& b) {
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

TEST(Theme, ASelectionWithoutTheFocusIsPalerAndItsTextLegible) {
    for (const QPalette& palette : {lightPalette(), darkPalette()}) {
        const QPalette pale = withPaleSelection(palette);
        const QColor base = palette.color(QPalette::Base);
        const double strong = contrast(palette.color(QPalette::Highlight), base);
        const double faint = contrast(pale.color(QPalette::Highlight), base);
        EXPECT_LT(faint, strong / 1.5);
        EXPECT_GT(faint, 1.15) << "still to be seen";
        EXPECT_GT(contrast(pale.color(QPalette::Highlight), pale.color(QPalette::HighlightedText)), 4.5);
        EXPECT_EQ(base, pale.color(QPalette::Base));
    }
}

TEST(Theme, TheWindowsTakeTheColoursOfTheScheme) {
    const QPalette before = QApplication::palette();
    applyColorScheme(ColorScheme::Dark);
    EXPECT_TRUE(isDark(QApplication::palette()));
    applyColorScheme(ColorScheme::Light);
    EXPECT_FALSE(isDark(QApplication::palette()));
    applyColorScheme(ColorScheme::Dark);
    applyColorScheme(ColorScheme::Desktop);
    EXPECT_EQ(isDark(before), isDark(QApplication::palette())) << "as it was when the program started";
    QApplication::setPalette(before);
}

} // namespace
} // namespace tavix
