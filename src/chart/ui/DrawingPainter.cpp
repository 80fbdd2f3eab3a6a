#include "chart/ui/DrawingPainter.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "grid/ui/Tints.h"

#include <QFontMetricsF>
#include <QPolygonF>

#include <cmath>
#include <variant>

namespace tavix {

namespace {

using namespace chart;

QPolygonF polygonOf(const std::vector<Point>& points) {
    QPolygonF polygon;
    polygon.reserve(static_cast<qsizetype>(points.size()));
    for (const Point& point : points)
        polygon << QPointF(point.x, point.y);
    return polygon;
}

class ShapePainter {
  public:
    ShapePainter(QPainter& painter, const QPalette& palette)
        : m_painter(painter), m_palette(palette), m_scale(painter.device()->devicePixelRatioF()) {}

    void operator()(const Line& line) const {
        const QColor color = colorOf(line.role, m_palette);
        const bool isUpright = line.from.x == line.to.x;
        if (!line.isDashed && (isUpright || line.from.y == line.to.y)) {
            const double left = snapped(std::min(line.from.x, line.to.x) - (isUpright ? line.width / 2 : 0));
            const double top = snapped(std::min(line.from.y, line.to.y) - (isUpright ? 0 : line.width / 2));
            const double thickness = std::max(1.0, std::round(line.width * m_scale)) / m_scale;
            m_painter.fillRect(QRectF(left, top,
                                      isUpright ? thickness : snapped(std::max(line.from.x, line.to.x)) - left,
                                      isUpright ? snapped(std::max(line.from.y, line.to.y)) - top : thickness),
                               color);
            return;
        }
        QPen pen(color, line.width);
        if (line.isDashed)
            pen.setDashPattern({4, 3});
        m_painter.setPen(pen);
        m_painter.drawLine(QPointF(line.from.x, line.from.y), QPointF(line.to.x, line.to.y));
    }
    void operator()(const Curve& curve) const {
        m_painter.setPen(QPen(colorOf(curve.role, m_palette), curve.width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawPolyline(polygonOf(curve.points));
    }
    void operator()(const Area& area) const {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(colorOf(area.role, m_palette));
        m_painter.drawPolygon(polygonOf(area.points));
    }
    void operator()(const Box& box) const {
        const double left = snapped(box.rect.x);
        const double top = snapped(box.rect.y);
        const double width = std::max(snapped(box.rect.x + box.rect.width) - left, 1 / m_scale);
        const double height = std::max(snapped(box.rect.y + box.rect.height) - top, 1 / m_scale);
        const QColor color = colorOf(box.role, m_palette);
        if (box.radius <= 0 || width < 2 * box.radius)
            return m_painter.fillRect(QRectF(left, top, width, height), color);
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(color);
        m_painter.drawRoundedRect(QRectF(left, top, width, height), box.radius, box.radius);
    }
    void operator()(const Dot& dot) const {
        // The ring keeps a dot apart from what is below it.
        m_painter.setPen(QPen(m_palette.color(QPalette::Base), 1.5));
        m_painter.setBrush(colorOf(dot.role, m_palette));
        m_painter.drawEllipse(QPointF(dot.center.x, dot.center.y), dot.radius + 0.75, dot.radius + 0.75);
    }
    void operator()(const Text& text) const {
        const QString shown = toQString(text.text);
        const QFontMetricsF metrics(m_painter.font(), m_painter.device());
        const double width = metrics.horizontalAdvance(shown);
        const double left = text.anchor == Anchor::Start ? text.at.x
                            : text.anchor == Anchor::End ? text.at.x - width
                                                         : text.at.x - width / 2;
        m_painter.setPen(colorOf(text.role, m_palette));
        m_painter.drawText(QPointF(left, text.at.y + (metrics.ascent() - metrics.descent()) / 2), shown);
    }

  private:
    [[nodiscard]] double snapped(double position) const { return std::round(position * m_scale) / m_scale; }

    QPainter& m_painter;
    const QPalette& m_palette;
    double m_scale;
};

} // namespace

QColor colorOf(Role role, const QPalette& palette) {
    const QColor base = palette.color(QPalette::Base);
    const QColor text = palette.color(QPalette::Text);
    const bool dark = isDark(palette);
    switch (role) {
    case Role::Axis:
        return mixed(base, text, 0.34);
    case Role::Faint:
        return mixed(base, text, dark ? 0.11 : 0.07);
    case Role::Bar:
        return mixed(base, tint::accent(palette), dark ? 0.62 : 0.58);
    case Role::Pale:
        return mixed(base, tint::accent(palette), dark ? 0.26 : 0.18);
    case Role::Accent:
        return tint::accent(palette);
    case Role::Fence:
        return tint::accentWarm(palette);
    case Role::Alert:
        return tint::alert(palette);
    case Role::Label:
        return mixed(base, text, dark ? 0.66 : 0.62);
    case Role::Text:
        break;
    }
    return text;
}

void paintDrawing(QPainter& painter, const Drawing& drawing, const QPalette& palette) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const ShapePainter paint(painter, palette);
    for (const Shape& shape : drawing.shapes)
        std::visit(paint, shape);
    painter.restore();
}

} // namespace tavix
