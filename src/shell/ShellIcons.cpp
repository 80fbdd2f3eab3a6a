#include "shell/ShellIcons.h"

#include "base/ui/Theme.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace tavix::shell {

namespace {

// All shapes are drawn in a square of 20 units.
void drawOpen(QPainter& painter) {
    painter.drawPolyline(QPolygonF{{3, 16}, {3, 4}, {8, 4}, {9.8, 6}, {16, 6}, {16, 9}});
    painter.drawPolygon(QPolygonF{{3, 16}, {5.6, 9}, {18, 9}, {15.4, 16}});
}

void drawReports(QPainter& painter) {
    for (const double y : {5.0, 10.0, 15.0}) {
        painter.drawLine(QPointF(7.5, y), QPointF(17, y));
        painter.drawPoint(QPointF(3.5, y));
    }
}

void drawReload(QPainter& painter) {
    painter.drawArc(QRectF(3.5, 3.5, 13, 13), 60 * 16, 290 * 16);
    painter.drawPolyline(QPolygonF{{13.6, 1.6}, {13.4, 4.9}, {16.9, 5.1}});
}

void drawOptions(QPainter& painter) {
    const auto slider = [&painter](double y, double knob) {
        painter.drawLine(QPointF(3, y), QPointF(knob - 2, y));
        painter.drawLine(QPointF(knob + 2, y), QPointF(17, y));
        painter.drawEllipse(QPointF(knob, y), 2, 2);
    };
    slider(5, 12.5);
    slider(10, 6.5);
    slider(15, 13.5);
}

void drawDeleteHistory(QPainter& painter) {
    painter.drawLine(QPointF(4, 5.5), QPointF(16, 5.5));
    painter.drawPolyline(QPolygonF{{8, 5.5}, {8, 3.2}, {12, 3.2}, {12, 5.5}});
    painter.drawPolyline(QPolygonF{{5.3, 5.5}, {6, 17}, {14, 17}, {14.7, 5.5}});
    painter.drawLine(QPointF(8.6, 8.8), QPointF(8.8, 13.8));
    painter.drawLine(QPointF(11.4, 8.8), QPointF(11.2, 13.8));
}

class LineIconEngine final : public QIconEngine {
  public:
    explicit LineIconEngine(ShellIcon icon) : m_icon(icon) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const QPalette colors = QGuiApplication::palette();
        const QColor text = mixed(colors.color(QPalette::WindowText), colors.color(QPalette::Window), 0.2);
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        painter->translate(rect.topLeft());
        painter->scale(rect.width() / 20.0, rect.height() / 20.0);
        painter->setBrush(Qt::NoBrush);
        painter->setPen(QPen(mode == QIcon::Disabled ? colors.color(QPalette::Disabled, QPalette::WindowText) : text,
                             1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        switch (m_icon) {
        case ShellIcon::Open:
            drawOpen(*painter);
            break;
        case ShellIcon::Reports:
            drawReports(*painter);
            break;
        case ShellIcon::Reload:
            drawReload(*painter);
            break;
        case ShellIcon::Options:
            drawOptions(*painter);
            break;
        case ShellIcon::DeleteHistory:
            drawDeleteHistory(*painter);
            break;
        }
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        paint(&painter, QRect({}, size), mode, state);
        return pixmap;
    }

    [[nodiscard]] QIconEngine* clone() const override { return new LineIconEngine(m_icon); }

  private:
    ShellIcon m_icon;
};

} // namespace

QIcon shellIcon(ShellIcon icon) {
    return QIcon(new LineIconEngine(icon));
}

} // namespace tavix::shell
