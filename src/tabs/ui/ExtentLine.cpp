#include "tabs/ui/ExtentLine.h"

#include "base/ui/QtText.h"
#include "base/ui/QuietPalette.h"
#include "grid/ui/Tints.h"
#include "tabs/ui/LinkButton.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kMargin = 12;
constexpr int kGap = 4;
constexpr std::size_t kMostLinks = 3;

} // namespace

ExtentLine::ExtentLine(QWidget* parent) : QWidget(parent), m_text(new QLabel(this)), m_layout(new QHBoxLayout(this)) {
    setObjectName(QStringLiteral("extentLine"));
    m_text->setObjectName(QStringLiteral("extent"));
    m_text->setTextFormat(Qt::PlainText);
    m_layout->setContentsMargins(kMargin, kGap + 1, kMargin, kGap);
    m_layout->setSpacing(kGap);
    m_layout->addWidget(m_text);
    m_layout->addStretch(1);
    // Made once, so that they keep their places in the tab order.
    while (m_links.size() < kMostLinks)
        m_links.push_back(AddLink());
    ApplyColors();
    hide();
}

ExtentLine::Link ExtentLine::AddLink() {
    const std::size_t number = m_links.size();
    const Link link{new QLabel(QStringLiteral("\u00B7"), this), new LinkButton(this)};
    link.button->setAccessibleName(QStringLiteral("show more"));
    link.button->setObjectName(QStringLiteral("extentStep%1").arg(number));
    const int before = m_layout->count() - 1; // the stretch
    m_layout->insertWidget(before, link.separator);
    m_layout->insertWidget(before + 1, link.button);
    connect(link.button, &QPushButton::clicked, this, [this, number] {
        if (number < m_extent.steps.size())
            Q_EMIT LimitChosen(m_extent.steps[number].limit);
    });
    return link;
}

void ExtentLine::ShowExtent(const FreqDistModel::Extent& extent) {
    m_extent = extent;
    m_text->setText(toQString(extent.text));
    for (std::size_t i = 0; i < m_links.size(); ++i) {
        const bool isUsed = i < extent.steps.size();
        m_links[i].separator->setVisible(isUsed);
        m_links[i].button->setVisible(isUsed);
        if (!isUsed)
            continue;
        const QString text = toQString(extent.steps[i].text);
        m_links[i].button->setText(text);
        m_links[i].button->setAccessibleName(text.startsWith(u's') ? text : QStringLiteral("show ") + text);
        m_links[i].button->updateGeometry();
    }
    ApplyColors();
    setVisible(!extent.text.empty());
}

QWidget* ExtentLine::GetLastTabStop() const {
    return m_extent.steps.empty() || isHidden() ? nullptr
                                                : m_links[std::min(m_extent.steps.size(), kMostLinks) - 1].button;
}

void ExtentLine::ApplyColors() {
    m_text->setPalette(quietPalette(palette()));
    for (const Link& link : m_links)
        link.separator->setPalette(quietPalette(palette()));
}

void ExtentLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyColors();
}

void ExtentLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(tint::line(palette()));
    painter.drawLine(0, 0, width(), 0);
}

} // namespace tavix
