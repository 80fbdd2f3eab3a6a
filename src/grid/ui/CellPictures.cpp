#include "grid/ui/CellPictures.h"

#include "grid/ui/Tints.h"

#include <algorithm>
#include <cmath>

namespace tavix {

namespace {

constexpr int kBarHeight = 10;
constexpr int kLeastPart = 2;
constexpr double kDot = 1.8;
constexpr double kLineWidth = 1.4;

struct Range {
    bool isEmpty = true;
    double low = 0;
    double high = 0;
};

Range rangeOf(const CellPicture& picture) {
    Range range;
    for (const double figure : picture.line) {
        if (!std::isfinite(figure))
            continue;
        range.low = range.isEmpty ? figure : std::min(range.low, figure);
        range.high = range.isEmpty ? figure : std::max(range.high, figure);
        range.isEmpty = false;
    }
    return range;
}

} // namespace

bool isFlat(const CellPicture& picture) {
    const Range range = rangeOf(picture);
    return range.low == range.high;
}

void paintParts(QPainter& painter, const QRect& cell, const CellPicture& picture, const QPalette& palette,
                const QColor& background) {
    const int top = cell.top() + (cell.height() - kBarHeight) / 2;
    int left = cell.left();
    int room = cell.width();
    for (std::size_t part = 0; part < picture.parts.size(); ++part) {
        const double share = std::clamp(picture.parts[part], 0.0, 1.0);
        if (share == 0)
            continue;
        int width = std::min(room, std::max(kLeastPart, static_cast<int>(std::lround(share * cell.width()))));
        // The later parts need their room, too.
        for (std::size_t later = part + 1; later < picture.parts.size(); ++later)
            width = std::min(width, room - (picture.parts[later] > 0 ? kLeastPart : 0));
        painter.fillRect(QRect(left, top, width, kBarHeight), tint::part(palette, background, part));
        left += width;
        room -= width;
    }
}

void paintLine(QPainter& painter, const QRectF& rect, const CellPicture& picture, const QColor& color) {
    const Range range = rangeOf(picture);
    if (range.isEmpty)
        return;
    const double low = range.low;
    const double high = range.high;
    const double last = std::max<double>(1, static_cast<double>(picture.line.size()) - 1);
    const auto pointOf = [&](std::size_t at) {
        // Unchanged figures are a line through the middle.
        const double height = high > low ? (picture.line[at] - low) / (high - low) : 0.5;
        return QPointF(rect.left() + rect.width() * static_cast<double>(at) / last,
                       rect.bottom() - rect.height() * height);
    };
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, kLineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    QPolygonF line;
    const auto drawLine = [&] {
        if (line.size() > 1)
            painter.drawPolyline(line);
        line.clear();
    };
    QPointF latest;
    for (std::size_t at = 0; at < picture.line.size(); ++at) {
        if (!std::isfinite(picture.line[at])) {
            drawLine();
            continue;
        }
        latest = pointOf(at);
        line << latest;
    }
    drawLine();
    painter.setBrush(color);
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(latest, kDot, kDot);
    painter.restore();
}

} // namespace tavix
