#include "tabs/ui/ViewHeader.h"

#include "base/ui/ElidedLabel.h"
#include "base/ui/QuietPalette.h"
#include "tabs/ui/LinkButton.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QToolButton>

namespace tavix {

namespace {

constexpr int kIcon = 16;

template <typename Draw>
QIcon drawn(const QColor& normal, const QColor& hot, double scale, Draw draw) {
    QIcon icon;
    for (const bool isHot : {false, true}) {
        QPixmap pixmap(QSize(kIcon, kIcon) * scale);
        pixmap.setDevicePixelRatio(scale);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(isHot ? hot : normal, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        draw(painter);
        painter.end();
        icon.addPixmap(pixmap, isHot ? QIcon::Active : QIcon::Normal);
    }
    return icon;
}

void drawDetails(QPainter& painter) {
    painter.drawRoundedRect(QRectF(2.5, 1.5, 11, 13), 1.5, 1.5);
    for (const double y : {5.0, 8.0, 11.0})
        painter.drawLine(QPointF(5, y), QPointF(11, y));
}

void drawDetach(QPainter& painter) {
    painter.drawPolyline(QPolygonF{{7, 4.5}, {2.5, 4.5}, {2.5, 13.5}, {11.5, 13.5}, {11.5, 9}});
    painter.drawLine(QPointF(7, 9), QPointF(13.5, 2.5));
    painter.drawPolyline(QPolygonF{{9.5, 2.5}, {13.5, 2.5}, {13.5, 6.5}});
}

} // namespace

ViewHeader::ViewHeader(QWidget* parent)
    : QWidget(parent),
      m_title(new QLabel(this)),
      m_detail(new ElidedLabel(this)),
      m_damage(new LinkButton(this)),
      m_details(new QToolButton(this)),
      m_detach(new QToolButton(this)) {
    m_title->setObjectName(QStringLiteral("viewTitle"));
    m_detail->setObjectName(QStringLiteral("viewDetail"));
    QFont titleFont = font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.25);
    titleFont.setWeight(QFont::DemiBold);
    m_title->setFont(titleFont);
    for (QLabel* label : {m_title, m_detail}) {
        // Names come from the data.
        label->setTextFormat(Qt::PlainText);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        // A long name must not widen the pane.
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    m_title->setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Preferred);
    m_title->setMinimumWidth(40);
    m_details->setObjectName(QStringLiteral("detailsButton"));
    m_details->setToolTip(QStringLiteral("Details"));
    m_detach->setObjectName(QStringLiteral("detachButton"));
    m_detach->setToolTip(QStringLiteral("Detach"));
    for (QToolButton* button : {m_details, m_detach}) {
        button->setAccessibleName(button->toolTip());
        button->setAutoRaise(true);
        button->setIconSize({kIcon, kIcon});
        button->setFocusPolicy(Qt::TabFocus);
    }
    m_damage->setObjectName(QStringLiteral("damagedRows"));
    m_damage->setAccessibleName(tr("Damaged rows"));
    m_damage->setToolTip(tr("List the damaged rows with their lines and reasons"));
    m_damage->hide();
    connect(m_damage, &QPushButton::clicked, this, &ViewHeader::DamageClicked);
    connect(m_details, &QToolButton::clicked, this, &ViewHeader::DetailsClicked);
    connect(m_detach, &QToolButton::clicked, this, &ViewHeader::DetachClicked);

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(12, 7, 8, 7);
    layout->setSpacing(4);
    layout->addWidget(m_title);
    layout->addWidget(m_detail, 1);
    layout->addWidget(m_damage);
    layout->addWidget(m_details);
    layout->addWidget(m_detach);
    ApplyLook();
}

void ViewHeader::SetText(const QString& title, const QString& detail) {
    m_title->setText(title);
    m_detail->setText(QStringLiteral("  ") + detail);
}

void ViewHeader::SetDamage(const QString& text) {
    m_damage->setText(text);
    m_damage->setAccessibleName(text.isEmpty() ? tr("Damaged rows") : text);
    m_damage->setVisible(!text.isEmpty());
    m_damage->updateGeometry();
}

void ViewHeader::EnableDetails(bool hasDetails) {
    m_details->setEnabled(hasDetails);
}

void ViewHeader::HideButtons() {
    m_details->hide();
    m_detach->hide();
}

QWidget* ViewHeader::GetLastTabStop() const {
    if (!m_detach->isHidden())
        return m_detach;
    return m_damage->isHidden() ? nullptr : m_damage;
}

void ViewHeader::ApplyLook() {
    m_detail->setPalette(quietPalette(palette()));
    const QColor normal = quietText(palette());
    const QColor hot = palette().color(QPalette::Highlight);
    m_details->setIcon(drawn(normal, hot, devicePixelRatioF(), drawDetails));
    m_detach->setIcon(drawn(normal, hot, devicePixelRatioF(), drawDetach));
}

void ViewHeader::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        ApplyLook();
}

} // namespace tavix
