#include "tabs/ui/OverviewCardButton.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "grid/ui/Tints.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kPadding = 12;
constexpr int kGap = 2; // between lines
constexpr double kRadius = 6;
constexpr int kStripe = 4;
constexpr int kLeastWidth = 128;

} // namespace

OverviewCardButton::OverviewCardButton(QWidget* parent) : QAbstractButton(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void OverviewCardButton::ShowCard(const OverviewCard& card) {
    m_card = card;
    const bool leads = card.door.place != OverviewDoor::Place::None;
    setFocusPolicy(leads ? Qt::StrongFocus : Qt::NoFocus);
    setCursor(leads ? Qt::PointingHandCursor : Qt::ArrowCursor);
    setText(toQString(card.caption));
    setAccessibleName(toQString(card.caption + ": " + card.figure));
    const QString remark = Remark();
    QString description = remark;
    if (!card.toolTip.empty())
        description += (remark.isEmpty() ? QString() : QStringLiteral("\n")) + toQString(card.toolTip);
    setAccessibleDescription(description);
    // Names come from the data and may look like markup.
    setToolTip(QStringLiteral("<qt style=\"white-space:pre-wrap\">%1</qt>")
                   .arg((accessibleName() + u'\n' + description).trimmed().toHtmlEscaped()));
    updateGeometry();
    update();
}

QFont OverviewCardButton::FigureFont() const {
    QFont large = font();
    large.setPointSizeF(large.pointSizeF() * 1.8);
    large.setWeight(QFont::DemiBold);
    return large;
}

QFont OverviewCardButton::SmallFont() const {
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * 0.92);
    return small;
}

QString OverviewCardButton::Remark() const {
    if (m_card.change.empty() || m_card.ofRun.empty())
        return toQString(m_card.change + m_card.ofRun);
    return toQString(m_card.change + "  ·  " + m_card.ofRun);
}

QSize OverviewCardButton::sizeHint() const {
    const int small = QFontMetrics(SmallFont()).height();
    const QFontMetrics figure(FigureFont());
    const int width = std::max(kLeastWidth, figure.horizontalAdvance(toQString(m_card.figure)) + 2 * kPadding);
    return {width, 2 * small + figure.height() + 2 * kGap + 2 * kPadding - 4};
}

void OverviewCardButton::paintEvent(QPaintEvent*) {
    const QPalette& colors = palette();
    const bool leads = focusPolicy() != Qt::NoFocus;
    const bool isLit = leads && (underMouse() || hasFocus());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath outline;
    outline.addRoundedRect(box, kRadius, kRadius);
    const QColor base = colors.color(QPalette::Base);
    painter.fillPath(outline, mixed(base, colors.color(QPalette::Text), isDown() ? 0.10 : isLit ? 0.06 : 0.03));
    const QColor sign = m_card.isAlarming ? tint::alert(colors) : tint::accent(colors);
    painter.save();
    painter.setClipPath(outline);
    painter.fillRect(QRectF(0, 0, kStripe, height()), m_card.isAlarming ? sign : mixed(base, sign, 0.55));
    painter.restore();
    painter.setPen(QPen(hasFocus() ? tint::accent(colors)
                        : isLit    ? mixed(base, sign, 0.6)
                                   : tint::line(colors),
                        hasFocus() ? 2 : 1));
    painter.drawPath(outline);

    const QFontMetrics small(SmallFont());
    const QFontMetrics large(FigureFont());
    QRect line(kPadding + kStripe / 2, kPadding - 2, width() - 2 * kPadding, small.height());
    const auto draw = [&](const QString& text, const QFont& lineFont, const QFontMetrics& metrics,
                          const QColor& color) {
        painter.setFont(lineFont);
        painter.setPen(color);
        painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         metrics.elidedText(text, Qt::ElideRight, line.width()));
    };
    draw(toQString(m_card.caption), SmallFont(), small, quietText(colors));
    line.moveTop(line.bottom() + 1 + kGap);
    line.setHeight(large.height());
    draw(toQString(m_card.figure), FigureFont(), large,
         m_card.isAlarming ? tint::alert(colors) : colors.color(QPalette::Text));
    line.moveTop(line.bottom() + 1 + kGap);
    line.setHeight(small.height());
    draw(Remark(), SmallFont(), small, quietText(colors));
}

void OverviewCardButton::changeEvent(QEvent* event) {
    QAbstractButton::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateGeometry();
}

void OverviewCardButton::enterEvent(QEnterEvent* event) {
    QAbstractButton::enterEvent(event);
    update();
}

void OverviewCardButton::leaveEvent(QEvent* event) {
    QAbstractButton::leaveEvent(event);
    update();
}

void OverviewCardButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace tavix
