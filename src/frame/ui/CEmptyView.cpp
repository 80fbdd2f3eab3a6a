#include "frame/ui/CEmptyView.h"

#include "base/ui/Theme.h"

#include <QEvent>
#include <QLabel>
#include <QVBoxLayout>

namespace tavix {

CEmptyView::CEmptyView(QWidget* parent) : QWidget(parent), m_title(new QLabel(this)), m_advice(new QLabel(this)) {
    setObjectName(QStringLiteral("emptyView"));
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.35);
    m_title->setFont(titleFont);
    for (QLabel* label : {m_title, m_advice}) {
        label->setTextFormat(Qt::PlainText);
        label->setAlignment(Qt::AlignCenter);
        label->setWordWrap(true);
    }
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(24, 24, 24, 24);
    layout->setSpacing(8);
    layout->addStretch(2);
    layout->addWidget(m_title);
    layout->addWidget(m_advice);
    layout->addStretch(3);
    ApplyColors();
}

void CEmptyView::SetText(const QString& title, const QString& advice) {
    m_title->setText(title);
    m_advice->setText(advice);
}

void CEmptyView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void CEmptyView::ApplyColors() {
    QPalette quiet = palette();
    // On a base-coloured background, a label draws in QPalette::Text.
    quiet.setColor(QPalette::Text, quietText(palette()));
    m_advice->setPalette(quiet);
}

} // namespace tavix
