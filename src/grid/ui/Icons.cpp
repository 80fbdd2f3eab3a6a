#include "grid/ui/Icons.h"

#include "grid/ui/Tints.h"

#include <QPainterPath>
#include <QPixmapCache>

#include <array>
#include <cstddef>

namespace tavix {

namespace {

// All shapes are drawn in a square of 16 units.
class IconPainter {
  public:
    IconPainter(QPainter& painter, const QPalette& palette, bool onSelection)
        : m_painter(painter),
          m_accent(tint::accent(palette)),
          m_warm(tint::accentWarm(palette)),
          m_cool(tint::accentCool(palette)) {
        if (onSelection)
            m_accent = m_warm = m_cool = palette.color(QPalette::HighlightedText);
    }

    [[nodiscard]] const QColor& accent() const { return m_accent; }
    [[nodiscard]] const QColor& cool() const { return m_cool; }

    void field(bool inLookup) {
        stroke(m_accent);
        m_painter.drawRoundedRect(QRectF(5.5, 1.5, 5, 13), 1.2, 1.2);
        m_painter.drawLine(QPointF(5.5, 5.5), QPointF(10.5, 5.5));
        m_painter.drawLine(QPointF(5.5, 10), QPointF(10.5, 10));
        if (inLookup) {
            fill(m_cool);
            m_painter.drawEllipse(QPointF(12.2, 12.2), 3, 3);
        }
    }

    void table() {
        stroke(m_accent);
        m_painter.setBrush(wash(m_accent));
        m_painter.drawRoundedRect(QRectF(1.5, 2.5, 13, 11), 1.5, 1.5);
        m_painter.drawLine(QPointF(1.5, 6), QPointF(14.5, 6));
        m_painter.drawLine(QPointF(1.5, 9.75), QPointF(14.5, 9.75));
        m_painter.drawLine(QPointF(6, 6), QPointF(6, 13.5));
    }

    void badge(const QPolygonF& shape) {
        fill(m_warm);
        m_painter.drawPolygon(shape);
    }

    void filterTable() {
        table();
        badge({{8.5, 9}, {15.5, 9}, {13, 12}, {13, 15}, {11, 15}, {11, 12}});
    }

    void queryTable() {
        table();
        badge({{10, 8.5}, {15.5, 12}, {10, 15.5}});
    }

    void source() {
        const QColor color = m_cool;
        stroke(color);
        m_painter.setBrush(wash(color));
        QPainterPath body;
        body.moveTo(2.5, 4);
        body.lineTo(2.5, 12);
        body.cubicTo(2.5, 15.2, 13.5, 15.2, 13.5, 12);
        body.lineTo(13.5, 4);
        m_painter.drawPath(body);
        m_painter.drawEllipse(QRectF(2.5, 1.7, 11, 4.6));
        m_painter.setBrush(Qt::NoBrush);
        QPainterPath ring;
        ring.moveTo(2.5, 8);
        ring.cubicTo(2.5, 11.2, 13.5, 11.2, 13.5, 8);
        m_painter.drawPath(ring);
    }

    void folder(const QColor& color) {
        stroke(color);
        m_painter.setBrush(wash(color));
        m_painter.drawPolygon(QPolygonF{{1.5, 13.5}, {1.5, 3}, {6, 3}, {7.5, 5}, {14.5, 5}, {14.5, 13.5}});
    }

    void collection() {
        const QColor color = m_warm;
        stroke(color);
        m_painter.setBrush(wash(color));
        m_painter.drawRoundedRect(QRectF(1.5, 5.5, 9, 9), 1.5, 1.5);
        m_painter.setBrush(Qt::NoBrush);
        m_painter.drawPolyline(QPolygonF{{4, 3.2}, {12.8, 3.2}, {12.8, 12}});
        m_painter.drawPolyline(QPolygonF{{6.5, 1}, {15, 1}, {15, 9.5}});
    }

    void key() {
        stroke(m_warm, 1.5);
        m_painter.drawEllipse(QPointF(5, 8), 3.2, 3.2);
        m_painter.drawLine(QPointF(8.2, 8), QPointF(14.5, 8));
        m_painter.drawLine(QPointF(14, 8), QPointF(14, 11.5));
        m_painter.drawLine(QPointF(11, 8), QPointF(11, 10.5));
    }

    void redundancy() {
        const QColor color = m_cool;
        stroke(color, 1.3);
        m_painter.setBrush(wash(color));
        m_painter.drawEllipse(QPointF(6, 8), 4.5, 4.5);
        m_painter.drawEllipse(QPointF(10, 8), 4.5, 4.5);
    }

    // A dot to the right of one line, or of two.
    void beyond(int fences) {
        stroke(m_warm, 1.3);
        for (int fence = 0; fence < fences; ++fence)
            m_painter.drawLine(QPointF(4.5 + 3 * fence, 3), QPointF(4.5 + 3 * fence, 13));
        fill(m_warm);
        m_painter.drawEllipse(QPointF(12, 8), 2.2, 2.2);
    }

  private:
    void stroke(const QColor& color, double width = 1.1) {
        m_painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        m_painter.setBrush(Qt::NoBrush);
    }
    void fill(const QColor& color) {
        m_painter.setPen(Qt::NoPen);
        m_painter.setBrush(color);
    }
    static QColor wash(QColor color) {
        color.setAlphaF(0.16F);
        return color;
    }

    QPainter& m_painter;
    QColor m_accent;
    QColor m_warm;
    QColor m_cool;
};

/// One icon; the table is in the order of CellIcon.
struct IconRow {
    CellIcon icon;
    const char* meaning; ///< see iconMeaning()
    void (*draw)(IconPainter&);
};

constexpr std::array<IconRow, 14> kIcons = {{
    {CellIcon::None, "", [](IconPainter&) {}},
    {CellIcon::Field, "", [](IconPainter& draw) { draw.field(false); }},
    {CellIcon::FieldInLookup, "Member of a collection", [](IconPainter& draw) { draw.field(true); }},
    {CellIcon::KeyAnalysis, "Has primary key/foreign key analyses", [](IconPainter& draw) { draw.key(); }},
    {CellIcon::Redundancy, "Has redundant data analyses", [](IconPainter& draw) { draw.redundancy(); }},
    {CellIcon::Table, "Table", [](IconPainter& draw) { draw.table(); }},
    {CellIcon::QueryTable, "Table from an SQL query", [](IconPainter& draw) { draw.queryTable(); }},
    {CellIcon::FilterTable, "Filtered table", [](IconPainter& draw) { draw.filterTable(); }},
    {CellIcon::Source, "Data source", [](IconPainter& draw) { draw.source(); }},
    {CellIcon::Catalog, "Catalog", [](IconPainter& draw) { draw.folder(draw.cool()); }},
    {CellIcon::Schema, "Schema", [](IconPainter& draw) { draw.folder(draw.accent()); }},
    {CellIcon::Collection, "Collection", [](IconPainter& draw) { draw.collection(); }},
    {CellIcon::BeyondFence, "Beyond 1.5 times the interquartile range", [](IconPainter& draw) { draw.beyond(1); }},
    {CellIcon::FarBeyondFence, "Beyond 3 times the interquartile range", [](IconPainter& draw) { draw.beyond(2); }},
}};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < kIcons.size(); ++i) {
        if (static_cast<std::size_t>(kIcons[i].icon) != i)
            return false;
    }
    return true;
}
static_assert(isInOrder() && kIcons.back().icon == CellIcon::FarBeyondFence);

const IconRow& rowOf(CellIcon icon) {
    return kIcons[static_cast<std::size_t>(icon)];
}

void drawIcon(QPainter& painter, const QRectF& rect, CellIcon icon, const QPalette& palette, bool onSelection) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(rect.topLeft());
    painter.scale(rect.width() / 16.0, rect.height() / 16.0);
    IconPainter draw(painter, palette, onSelection);
    rowOf(icon).draw(draw);
    painter.restore();
}

} // namespace

void paintIcon(QPainter& painter, const QRectF& rect, CellIcon icon, const QPalette& palette, bool onSelection) {
    // A scaling painter, such as a printer's, needs vectors.
    if (painter.transform().type() > QTransform::TxTranslate || !painter.device())
        return drawIcon(painter, rect, icon, palette, onSelection);
    const qreal scale = painter.device()->devicePixelRatio();
    const QString key = QStringLiteral("tavix icon %1 %2 %3 %4 %5 %6")
                            .arg(static_cast<int>(icon))
                            .arg(onSelection)
                            .arg(palette.cacheKey())
                            .arg(static_cast<int>(palette.currentColorGroup()))
                            .arg(rect.width())
                            .arg(scale);
    QPixmap picture;
    if (!QPixmapCache::find(key, &picture)) {
        picture = QPixmap((rect.size() * scale).toSize());
        picture.setDevicePixelRatio(scale);
        picture.fill(Qt::transparent);
        QPainter inside(&picture);
        drawIcon(inside, QRectF({}, rect.size()), icon, palette, onSelection);
        inside.end();
        QPixmapCache::insert(key, picture);
    }
    painter.drawPixmap(rect.topLeft(), picture);
}

QString iconMeaning(CellIcon icon) {
    return QString::fromUtf8(rowOf(icon).meaning);
}

} // namespace tavix
