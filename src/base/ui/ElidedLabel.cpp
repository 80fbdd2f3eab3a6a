#include "base/ui/ElidedLabel.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

namespace tavix {

ElidedLabel::ElidedLabel(QWidget* parent) : ElidedLabel(QString(), parent) {}

ElidedLabel::ElidedLabel(const QString& text, QWidget* parent) : QLabel(text, parent) {
    setTextFormat(Qt::PlainText);
}

bool ElidedLabel::IsCut() const {
    return fontMetrics().horizontalAdvance(text()) > contentsRect().width();
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* event) {
    if (!IsCut())
        return QLabel::paintEvent(event);
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, contentsRect().width());
    style()->drawItemText(&painter, contentsRect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, palette(),
                          isEnabled(), shown, foregroundRole());
}

bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || !IsCut())
        return QLabel::event(event);
    // The text may come from the data and look like markup.
    QToolTip::showText(
        static_cast<QHelpEvent*>(event)->globalPos(),
        QStringLiteral("<qt style=\"white-space:pre-wrap\">%1</qt>").arg(text().trimmed().toHtmlEscaped()), this);
    return true;
}

} // namespace tavix
