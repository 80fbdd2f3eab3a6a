#include "tabs/ui/LinkButton.h"

#include <QPainter>

namespace tavix {

namespace {

constexpr int kMargin = 2;

} // namespace

LinkButton::LinkButton(QWidget* parent) : QPushButton(parent) {
    setFlat(true);
    setCursor(Qt::PointingHandCursor);
    setAutoDefault(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus);
}

QSize LinkButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 2 * kMargin, fontMetrics().height() + 2 * kMargin};
}

void LinkButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    QFont shown = font();
    shown.setUnderline(underMouse() || hasFocus());
    painter.setFont(shown);
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::Link));
    painter.drawText(rect(), static_cast<int>(Qt::AlignCenter) | Qt::TextSingleLine, text());
    if (!hasFocus())
        return;
    QPen ring(palette().color(QPalette::Highlight));
    painter.setPen(ring);
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

} // namespace tavix
