#include "chart/ui/DrawingWidget.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "chart/ui/DrawingPainter.h"
#include "grid/ui/Tints.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <utility>

namespace tavix {

DrawingWidget::DrawingWidget(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("drawing"));
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    SetPicture(nullptr);
}

DrawingWidget::~DrawingWidget() = default;

void DrawingWidget::SetPicture(std::unique_ptr<chart::Picture> picture) {
    m_picture = std::move(picture);
    m_current = -1;
    m_hovered = -1;
    setAccessibleName(m_picture ? toQString(m_picture->title()) : tr("Picture"));
    setAccessibleDescription(m_picture ? toQString(m_picture->description()) : QString());
    Redraw();
}

void DrawingWidget::Redraw() {
    m_isDrawn = false;
    update();
}

const chart::Drawing& DrawingWidget::GetDrawing() {
    if (m_isDrawn)
        return m_drawing;
    m_isDrawn = true;
    m_drawing = {};
    if (!m_picture)
        return m_drawing;
    const QFontMetricsF metrics(font(), this);
    const chart::Canvas canvas{
        static_cast<double>(width()), static_cast<double>(height()), metrics.height(),
        [&metrics](std::string_view text) { return metrics.horizontalAdvance(toQString(text)); }};
    m_drawing = m_picture->draw(canvas);
    if (m_current >= static_cast<int>(m_drawing.hits.size()))
        m_current = -1;
    m_hovered = -1;
    return m_drawing;
}

QSize DrawingWidget::minimumSizeHint() const {
    return {160, 120};
}

QRect DrawingWidget::RectOf(int hit) {
    const chart::Rect& rect = GetDrawing().hits[static_cast<std::size_t>(hit)].rect;
    return QRectF(rect.x, rect.y, rect.width, rect.height).toAlignedRect();
}

void DrawingWidget::paintEvent(QPaintEvent*) {
    const chart::Drawing& drawing = GetDrawing();
    QPainter painter(this);
    if (m_hovered >= 0 && m_hovered != m_current)
        painter.fillRect(RectOf(m_hovered),
                         mixed(palette().color(QPalette::Base), palette().color(QPalette::Text), 0.05));
    if (m_current >= 0)
        painter.fillRect(RectOf(m_current), mixed(palette().color(QPalette::Base), tint::accent(palette()), 0.14));
    paintDrawing(painter, drawing, palette());
    if (!hasFocus())
        return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 1));
    painter.setBrush(Qt::NoBrush);
    const QRect outline = m_current >= 0 ? RectOf(m_current) : rect();
    painter.drawRect(QRectF(outline.intersected(rect())).adjusted(0.5, 0.5, -0.5, -0.5));
}

void DrawingWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Redraw();
}

void DrawingWidget::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        Redraw();
}

void DrawingWidget::MoveTo(int hit) {
    m_current = hit;
    const std::string& text = GetDrawing().hits[static_cast<std::size_t>(hit)].text;
    setAccessibleDescription(toQString(text));
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
    ShowFigure(hit);
    update();
}

void DrawingWidget::ShowFigure(int hit) {
    const chart::HitArea& area = GetDrawing().hits[static_cast<std::size_t>(hit)];
    const QRect rect = RectOf(hit);
    QToolTip::showText(mapToGlobal(QPoint(rect.center().x(), rect.top())), toQString(area.text).toHtmlEscaped(), this,
                       rect);
}

void DrawingWidget::ShowHovered(int hit) {
    if (hit == m_hovered)
        return;
    m_hovered = hit;
    const bool acts =
        hit >= 0 && GetDrawing().hits[static_cast<std::size_t>(hit)].action.kind != chart::ActionKind::None;
    setCursor(acts ? Qt::PointingHandCursor : Qt::ArrowCursor);
    if (hit >= 0)
        ShowFigure(hit);
    else
        QToolTip::hideText();
    update();
}

void DrawingWidget::Act(int hit) {
    if (hit < 0)
        return;
    // A copy: the receiver may replace the picture.
    const chart::Action action = GetDrawing().hits[static_cast<std::size_t>(hit)].action;
    if (action.kind != chart::ActionKind::None)
        Q_EMIT ActionRequested(action);
}

void DrawingWidget::keyPressEvent(QKeyEvent* event) {
    const int last = static_cast<int>(GetDrawing().hits.size()) - 1;
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        return Act(m_current);
    case Qt::Key_Right:
    case Qt::Key_Down:
        if (last >= 0)
            MoveTo(std::min(m_current + 1, last));
        return;
    case Qt::Key_Left:
    case Qt::Key_Up:
        if (last >= 0)
            MoveTo(m_current < 0 ? last : std::max(m_current - 1, 0));
        return;
    case Qt::Key_Home:
        if (last >= 0)
            MoveTo(0);
        return;
    case Qt::Key_End:
        if (last >= 0)
            MoveTo(last);
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void DrawingWidget::mouseMoveEvent(QMouseEvent* event) {
    ShowHovered(GetDrawing().hitAt({event->position().x(), event->position().y()}));
}

void DrawingWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Act(GetDrawing().hitAt({event->position().x(), event->position().y()}));
}

void DrawingWidget::leaveEvent(QEvent* event) {
    QWidget::leaveEvent(event);
    ShowHovered(-1);
}

void DrawingWidget::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}

} // namespace tavix
