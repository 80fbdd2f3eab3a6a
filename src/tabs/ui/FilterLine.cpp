#include "tabs/ui/FilterLine.h"

#include "base/ui/Theme.h"
#include "grid/ui/Tints.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 4;
/// A tooltip shows no more of a long filter.
constexpr qsizetype kLongestTip = 1000;

} // namespace

FilterLine::FilterLine(QWidget* parent)
    : QWidget(parent),
      m_text(new QLabel(this)),
      m_edit(new QPushButton(tr("Edit..."), this)),
      m_stop(new QPushButton(tr("Stop"), this)) {
    setObjectName(QStringLiteral("filterLine"));
    // It quotes values.
    m_text->setTextFormat(Qt::PlainText);
    m_text->setObjectName(QStringLiteral("filterText"));
    m_text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_edit->setObjectName(QStringLiteral("editFilter"));
    m_edit->setAccessibleName(tr("Edit the filter"));
    m_edit->setToolTip(m_edit->accessibleName());
    m_stop->setObjectName(QStringLiteral("stopFilter"));
    m_stop->setAccessibleName(tr("Stop filtering"));
    m_stop->setToolTip(m_stop->accessibleName());
    // The line is no higher than its text.
    for (QPushButton* button : {m_edit, m_stop})
        button->setFixedHeight(fontMetrics().height() + 2 * kGap);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(kMargin, kGap, kMargin, kGap + 1);
    layout->setSpacing(6);
    layout->addWidget(m_text, 1);
    layout->addWidget(m_edit);
    layout->addWidget(m_stop);
    connect(m_edit, &QPushButton::clicked, this, &FilterLine::EditClicked);
    connect(m_stop, &QPushButton::clicked, this, &FilterLine::StopClicked);
    ApplyColors();
}

void FilterLine::ShowText(const QString& words, bool isAlarming) {
    m_isAlarming = isAlarming;
    m_words = words.simplified();
    const QString tip = m_words.size() > kLongestTip ? m_words.left(kLongestTip) + QChar(0x2026) : m_words;
    m_text->setToolTip(QStringLiteral("<p>%1</p>").arg(tip.toHtmlEscaped()));
    m_text->setAccessibleName(tip);
    ApplyColors();
    FitText();
}

void FilterLine::FitText() {
    // A filter may name a million values; measuring them all would be slow.
    const QString start = m_words.left(kLongestTip);
    m_text->setText(fontMetrics().elidedText(start, Qt::ElideRight, m_text->width()));
}

QWidget* FilterLine::GetLastTabStop() const {
    return m_stop;
}

void FilterLine::ApplyColors() {
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText,
                    m_isAlarming ? tint::alert(palette()) : palette().color(QPalette::WindowText));
    m_text->setPalette(colors);
}

void FilterLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
    else if (event->type() == QEvent::FontChange)
        FitText();
}

void FilterLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    // The layout has not yet set the text's width.
    layout()->activate();
    FitText();
}

void FilterLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(tint::line(palette()));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

} // namespace tavix
