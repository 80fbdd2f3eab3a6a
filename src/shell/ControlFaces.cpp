#include "shell/ControlFaces.h"

#include "base/ui/Theme.h"

#include <QPainter>
#include <QStyleOption>

#include <algorithm>

namespace tavix::shell {

namespace {

constexpr double kRadius = 5;

} // namespace

QColor borderColor(const QPalette& colors) {
    return mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), isDark(colors) ? 0.22 : 0.2);
}

QColor lineColor(const QPalette& colors) {
    return mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), isDark(colors) ? 0.16 : 0.14);
}

void drawBox(QPainter* painter, const QRect& rect, const QColor& fill, const QColor& border) {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(border);
    painter->setBrush(fill);
    painter->drawRoundedRect(QRectF(rect).adjusted(0.5, 0.5, -0.5, -0.5), kRadius, kRadius);
    painter->restore();
}

void drawChevron(QPainter* painter, const QRectF& rect, const QColor& color, bool down) {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF c = rect.center() + QPointF(0.5, 0.5);
    if (down)
        painter->drawPolyline(QPolygonF{c + QPointF(-3.5, -1.8), c + QPointF(0, 1.8), c + QPointF(3.5, -1.8)});
    else
        painter->drawPolyline(QPolygonF{c + QPointF(-1.8, -3.5), c + QPointF(1.8, 0), c + QPointF(-1.8, 3.5)});
    painter->restore();
}

void drawButton(QPainter* painter, const QStyleOption& option, bool isDefault) {
    const QPalette& colors = option.palette;
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    QColor fill = colors.color(QPalette::Button);
    QColor border = borderColor(colors);
    if (isDefault && enabled) {
        fill = colors.color(QPalette::Highlight);
        border = fill;
    }
    const QColor pressed =
        isDefault && enabled ? colors.color(QPalette::HighlightedText) : colors.color(QPalette::WindowText);
    if (option.state & (QStyle::State_Sunken | QStyle::State_On))
        fill = mixed(fill, pressed, 0.16);
    else if (enabled && option.state.testFlag(QStyle::State_MouseOver))
        fill = mixed(fill, pressed, 0.07);
    if (option.state.testFlag(QStyle::State_HasFocus) && enabled)
        border = isDefault ? mixed(fill, pressed, 0.5) : colors.color(QPalette::Highlight);
    drawBox(painter, option.rect, fill, border);
}

void drawRadioButton(QPainter* painter, const QStyleOption& option) {
    const QPalette& colors = option.palette;
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const int edge = std::min(option.rect.width(), option.rect.height());
    QRectF circle(0, 0, edge - 1, edge - 1);
    circle.moveCenter(QRectF(option.rect).center());
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const bool filled = enabled && option.state.testFlag(QStyle::State_On);
    painter->setPen(filled ? colors.color(QPalette::Highlight)
                           : mixed(colors.color(QPalette::Base), colors.color(QPalette::Text), enabled ? 0.4 : 0.25));
    painter->setBrush(filled ? colors.color(QPalette::Highlight)
                             : colors.color(enabled ? QPalette::Base : QPalette::Window));
    painter->drawEllipse(circle);
    if (option.state.testFlag(QStyle::State_On)) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(colors.color(enabled ? QPalette::HighlightedText : QPalette::Text));
        const double inset = edge * 0.3;
        painter->drawEllipse(circle.adjusted(inset, inset, -inset, -inset));
    }
    painter->restore();
}

void drawCheckBox(QPainter* painter, const QStyleOption& option) {
    const QPalette& colors = option.palette;
    const bool enabled = option.state.testFlag(QStyle::State_Enabled);
    const bool filled = enabled && option.state & (QStyle::State_On | QStyle::State_NoChange);
    const int edge = std::min(option.rect.width(), option.rect.height());
    QRect box(0, 0, edge, edge);
    box.moveCenter(option.rect.center());
    const QColor ground =
        filled ? colors.color(QPalette::Highlight) : colors.color(enabled ? QPalette::Base : QPalette::Window);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    // On a selected row the box would have the row's colour.
    painter->setPen(filled ? mixed(ground, colors.color(QPalette::HighlightedText), 0.35)
                           : mixed(colors.color(QPalette::Base), colors.color(QPalette::Text), 0.4));
    painter->setBrush(ground);
    painter->drawRoundedRect(QRectF(box).adjusted(0.5, 0.5, -0.5, -0.5), 3, 3);
    const QColor ink = filled ? colors.color(QPalette::HighlightedText) : colors.color(QPalette::WindowText);
    painter->setPen(QPen(ink, 1.7, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter->translate(box.left(), box.top());
    painter->scale(edge / 14.0, edge / 14.0);
    if (option.state.testFlag(QStyle::State_On))
        painter->drawPolyline(QPolygonF{{3.6, 7.2}, {6, 9.8}, {10.4, 4.4}});
    else if (option.state.testFlag(QStyle::State_NoChange))
        painter->drawLine(QPointF(4, 7), QPointF(10, 7));
    painter->restore();
}

void drawTab(QPainter* painter, const QStyleOptionTab& tab) {
    const QPalette& colors = tab.palette;
    const bool selected = tab.state.testFlag(QStyle::State_Selected);
    if (!selected && tab.state.testFlag(QStyle::State_MouseOver))
        painter->fillRect(tab.rect, mixed(colors.color(QPalette::Window), colors.color(QPalette::WindowText), 0.06));
    if (selected) {
        const QRect bar(tab.rect.left() + 8, tab.rect.bottom() - 2, tab.rect.width() - 16, 3);
        painter->fillRect(bar, colors.color(QPalette::Highlight));
    }
}

void drawScrollBar(QPainter* painter, const QStyleOptionSlider& bar, const QRect& slider) {
    const QPalette& colors = bar.palette;
    painter->fillRect(bar.rect, colors.color(QPalette::Base));
    if (bar.maximum <= bar.minimum)
        return;
    const bool active = bar.state & (QStyle::State_MouseOver | QStyle::State_Sunken);
    const QRectF thumb = QRectF(slider).adjusted(3, 3, -3, -3);
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(mixed(colors.color(QPalette::Base), colors.color(QPalette::Text), active ? 0.45 : 0.25));
    const double radius = std::min(thumb.width(), thumb.height()) / 2;
    painter->drawRoundedRect(thumb, radius, radius);
    painter->restore();
}

} // namespace tavix::shell
