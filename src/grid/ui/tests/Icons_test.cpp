#include "grid/ui/Icons.h"

#include <QImage>

#include <gtest/gtest.h>

namespace tavix {
namespace {

QImage drawn(CellIcon icon, const QPalette& palette, bool onSelection, qreal scale, bool scaledByPainter = false) {
    const int edge = static_cast<int>(kIconSize * scale);
    QImage image(edge, edge, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    if (!scaledByPainter)
        image.setDevicePixelRatio(scale);
    QPainter painter(&image);
    if (scaledByPainter)
        painter.scale(scale, scale);
    paintIcon(painter, QRectF(0, 0, kIconSize, kIconSize), icon, palette, onSelection);
    painter.end();
    image.setDevicePixelRatio(1);
    return image;
}

// Painted icons are cached; the cache key must include everything that affects their look.
TEST(Icons, KeptPicturesAreThoseThatWouldBeDrawn) {
    QPalette light;
    light.setColor(QPalette::Base, Qt::white);
    light.setColor(QPalette::Highlight, QColor(0x20, 0x60, 0xc0));
    light.setColor(QPalette::HighlightedText, Qt::white);
    QPalette dark = light;
    dark.setColor(QPalette::Base, QColor(0x18, 0x18, 0x1c));
    dark.setColor(QPalette::Text, Qt::white);
    dark.setColor(QPalette::HighlightedText, Qt::yellow);
    for (const CellIcon icon : {CellIcon::Field, CellIcon::Table, CellIcon::KeyAnalysis, CellIcon::Source}) {
        const QImage first = drawn(icon, light, false, 1);
        EXPECT_EQ(first, drawn(icon, light, false, 1));
        EXPECT_NE(first, drawn(icon, light, true, 1));
        EXPECT_NE(drawn(icon, light, true, 1), drawn(icon, dark, true, 1));
        const QImage large = drawn(icon, light, false, 2);
        EXPECT_EQ(2 * kIconSize, large.width());
        // At twice the scale the icon is redrawn, not enlarged.
        EXPECT_EQ(large, drawn(icon, light, false, 2, true));
    }
    EXPECT_NE(drawn(CellIcon::Field, light, false, 1), drawn(CellIcon::Table, light, false, 1));
}

} // namespace
} // namespace tavix
