#include "grid/ui/AlertSigns.h"

#include "base/ui/Theme.h"
#include "grid/ui/Tints.h"

#include <QPainter>
#include <QPalette>
#include <QPolygonF>
#include <QRectF>
#include <QString>

namespace tavix {

namespace {

constexpr double kCorner = 10;
constexpr double kStripe = 3.5; // of a warning's corner
constexpr double kQuietCorner = 6;
constexpr double kQuietFaintness = 0.62;
constexpr double kRing = 2; // of a warning's dot

bool isRaised(AlertMark mark) {
    return mark == AlertMark::Warning || mark == AlertMark::Error;
}

QColor colorOf(AlertMark mark, const QPalette& palette, bool onSelection) {
    if (onSelection)
        return palette.color(QPalette::HighlightedText);
    return mark == AlertMark::Error ? tint::alert(palette) : tint::accentWarm(palette);
}

} // namespace

void paintAlertCorner(QPainter& painter, const QRect& cell, AlertMark mark, const QPalette& palette,
                      const QColor& background, bool onSelection) {
    if (mark == AlertMark::None)
        return;
    const QPointF corner(cell.right() + 1, cell.top());
    const auto left = [corner](double by) { return corner - QPointF(by, 0); };
    const auto below = [corner](double by) { return corner + QPointF(0, by); };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!isRaised(mark)) {
        const QColor text = palette.color(onSelection ? QPalette::HighlightedText : QPalette::Text);
        painter.setBrush(mixed(text, background, kQuietFaintness));
        painter.drawPolygon(QPolygonF{corner, left(kQuietCorner), below(kQuietCorner)});
    } else {
        painter.setBrush(colorOf(mark, palette, onSelection));
        if (mark == AlertMark::Error)
            painter.drawPolygon(QPolygonF{corner, left(kCorner), below(kCorner)});
        else
            painter.drawPolygon(
                QPolygonF{left(kCorner), left(kCorner - kStripe), below(kCorner - kStripe), below(kCorner)});
    }
    painter.restore();
}

void paintAlertDot(QPainter& painter, const QPointF& centre, AlertMark mark, const QPalette& palette,
                   bool onSelection) {
    if (!isRaised(mark))
        return;
    const QColor color = colorOf(mark, palette, onSelection);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isFilled = mark == AlertMark::Error;
    painter.setPen(isFilled ? QPen(Qt::NoPen) : QPen(color, kRing));
    painter.setBrush(isFilled ? QBrush(color) : QBrush(Qt::NoBrush));
    const double radius = kAlertDotSize / 2.0 - (isFilled ? 0 : kRing / 2);
    painter.drawEllipse(centre, radius, radius);
    painter.restore();
}

void paintAlertCount(QPainter& painter, const QRect& box, const QString& count, AlertMark mark,
                     const QPalette& palette) {
    if (!isRaised(mark))
        return;
    const QColor color = colorOf(mark, palette, false);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool isFilled = mark == AlertMark::Error;
    painter.setPen(QPen(color, 1.4));
    painter.setBrush(isFilled ? QBrush(color) : QBrush(Qt::NoBrush));
    const QRectF edge = QRectF(box).adjusted(0.7, 0.7, -0.7, -0.7);
    painter.drawRoundedRect(edge, edge.height() / 2, edge.height() / 2);
    painter.setPen(palette.color(isFilled ? QPalette::Base : QPalette::Text));
    painter.drawText(box, Qt::AlignCenter | Qt::TextSingleLine, count);
    painter.restore();
}

} // namespace tavix
