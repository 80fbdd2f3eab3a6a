#include "tabs/ui/CProfTabCtrl.h"

#include "base/ui/Theme.h"

#include <QFontInfo>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QToolButton>

namespace tavix {

namespace {

constexpr int kPadding = 8;
constexpr int kLeastPadding = 4; // before captions are elided
constexpr int kNarrowest = 72;   // of a tab whose caption is elided
constexpr int kLines = 5;        // above and below a caption
constexpr int kRest = 2;         // how much lower unselected tabs begin

} // namespace

CProfTabCtrl::CProfTabCtrl(QWidget* parent) : QTabBar(parent) {
    setObjectName(QStringLiteral("tabStrip"));
    setAccessibleName(QStringLiteral("Tabs of the view"));
    FitFont();
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(true);
    setFocusPolicy(Qt::TabFocus);
    // The scroll arrows lie over captions.
    for (auto* arrow : findChildren<QToolButton*>()) {
        arrow->setAutoFillBackground(true);
        arrow->setBackgroundRole(QPalette::Base);
        // The arrow keys do the same.
        arrow->setFocusPolicy(Qt::NoFocus);
        arrow->setAccessibleName(arrow->objectName().contains(QLatin1String("Left"))
                                     ? QStringLiteral("Tabs to the left")
                                     : QStringLiteral("Tabs to the right"));
    }
}

void CProfTabCtrl::FitFont() {
    setFixedHeight(kHeight * logicalDpiY() / 96);
    m_captionFont = font();
    const int room = height() - kLines;
    int size = QFontInfo(m_captionFont).pixelSize();
    while (size > 1 && QFontMetrics(m_captionFont).height() > room)
        m_captionFont.setPixelSize(--size);
}

void CProfTabCtrl::changeEvent(QEvent* event) {
    // Must precede the new layout of the tabs.
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        FitFont();
    QTabBar::changeEvent(event);
}

// QTabBar's own signal also comes for other buttons and beside the tabs.
void CProfTabCtrl::mouseDoubleClickEvent(QMouseEvent* event) {
    const int index = tabAt(event->position().toPoint());
    if (event->button() != Qt::LeftButton || index < 0)
        return;
    QMetaObject::invokeMethod(
        this, [this, index] { Q_EMIT TabDoubleClicked(index); }, Qt::QueuedConnection);
}

void CProfTabCtrl::InsertTab(int index, const QString& caption, int image) {
    const int at = insertTab(index, caption);
    setTabData(at, image);
}

void CProfTabCtrl::SetCaption(int index, const QString& caption) {
    if (tabText(index) != caption)
        setTabText(index, caption);
}

// Measured in bold for every tab, so tabs do not move when another one is selected.
int CProfTabCtrl::CaptionWidth(int index) const {
    QFont bold = m_captionFont;
    bold.setWeight(QFont::DemiBold);
    return QFontMetrics(bold).horizontalAdvance(QString(tabText(index)).remove(u'&'));
}

int CProfTabCtrl::PaddingNow() const {
    int captions = 0;
    for (int i = 0; i < count(); ++i)
        captions += isTabVisible(i) ? CaptionWidth(i) : 0;
    return qBound(kLeastPadding, (width() - captions) / qMax(2 * count(), 1), kPadding);
}

QSize CProfTabCtrl::tabSizeHint(int index) const {
    return {CaptionWidth(index) + 2 * PaddingNow(), height()};
}

QSize CProfTabCtrl::minimumTabSizeHint(int index) const {
    const QSize whole = tabSizeHint(index);
    if (index == currentIndex())
        return whole; // The caption of the selected tab is never elided.
    return {qMin(whole.width(), kNarrowest * logicalDpiX() / 96), whole.height()};
}

void CProfTabCtrl::tabLayoutChange() {
    for (int i = 0; i < count(); ++i) {
        const bool isCut = tabRect(i).width() < tabSizeHint(i).width();
        setTabToolTip(i, isCut ? tabText(i) : QString());
    }
}

CProfTabCtrl::Colors CProfTabCtrl::ColorsNow() const {
    const QPalette& own = palette();
    if (!isDark(own))
        return {Qt::white, {223, 223, 223}, Qt::black, {127, 127, 127}, {223, 223, 223}, Qt::black};
    const QColor base = own.color(QPalette::Base);
    const QColor text = own.color(QPalette::Text);
    return {base, mixed(base, text, 0.16), mixed(base, text, 0.55), mixed(base, text, 0.40), mixed(base, text, 0.16),
            text};
}

// Qt paints into a back buffer, so this does not flicker.
void CProfTabCtrl::paintEvent(QPaintEvent*) {
    const Colors colors = ColorsNow();
    QPainter painter(this);
    painter.fillRect(rect(), colors.background);
    painter.fillRect(QRect(0, height() - 2, width(), 1), colors.upperLine);
    painter.fillRect(QRect(0, height() - 1, width(), 1), colors.lowerLine);
    for (int i = 0; i < count(); ++i) {
        if (i != currentIndex() && isTabVisible(i))
            PaintTab(painter, i, colors);
    }
    if (currentIndex() >= 0)
        PaintTab(painter, currentIndex(), colors);
}

void CProfTabCtrl::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Home)
        SelectTab(0);
    else if (event->key() == Qt::Key_End)
        SelectTab(count() - 1);
    else
        QTabBar::keyPressEvent(event);
}

void CProfTabCtrl::PaintTab(QPainter& painter, int index, const Colors& colors) const {
    const bool selected = index == currentIndex();
    QRect face = tabRect(index);
    // Adjacent tabs share an outline.
    face.setRight(face.right() + 1);
    face.setTop(selected ? 0 : kRest);
    face.setBottom(selected ? height() - 1 : height() - 3);
    painter.fillRect(face, colors.face);
    painter.setPen(colors.outline);
    painter.drawLine(face.topLeft(), face.bottomLeft());
    painter.drawLine(face.topLeft(), face.topRight());
    painter.drawLine(face.topRight(), face.bottomRight());
    if (selected)
        painter.fillRect(QRect(face.left() + 1, 1, face.width() - 2, 2), palette().color(QPalette::Highlight));

    QFont captionFont = m_captionFont;
    captionFont.setWeight(selected ? QFont::DemiBold : QFont::Normal);
    painter.setFont(captionFont);
    painter.setPen(colors.text);
    const QRect captionRect = face.adjusted(1, selected ? 2 : 0, -1, 0);
    const int room = captionRect.width() - kLeastPadding;
    painter.drawText(captionRect, Qt::AlignCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(tabText(index), Qt::ElideRight, room));
    if (selected && hasFocus()) {
        QPen dots(colors.text, 1, Qt::DotLine);
        painter.setPen(dots);
        painter.drawRect(face.adjusted(3, 4, -4, -3));
    }
}

} // namespace tavix
