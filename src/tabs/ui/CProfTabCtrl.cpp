#include "tabs/ui/CProfTabCtrl.h"

#include "base/ui/Theme.h"
#include "grid/ui/AlertSigns.h"

#include <QFontInfo>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

#include <algorithm>
#include <utility>

namespace tavix {

namespace {

constexpr int kPadding = 10;
constexpr int kLeastPadding = 5;
constexpr int kLines = 5;            // above and below a caption
constexpr int kSmallestCaption = 11; // pixels at 96 dpi
constexpr int kLargestCaption = 13;  // pixels at 96 dpi
constexpr int kRest = 2;             // how much lower unselected tabs begin
constexpr double kRadius = 5;        // of the upper corners
constexpr int kCountGap = 5;         // between a caption and its sign
constexpr int kCountPadding = 9;     // beside the number in its sign
constexpr int kMostCount = 999;
constexpr int kMoreWidth = 30; // of the button for the other tabs, at 96 dpi

/// A face with rounded upper corners, along the middle of its outline.
QPainterPath outlineOf(const QRect& face) {
    const QRectF edge = QRectF(face).adjusted(0.5, 0.5, -0.5, 0);
    QPainterPath path;
    path.moveTo(edge.bottomLeft());
    path.lineTo(edge.left(), edge.top() + kRadius);
    path.quadTo(edge.topLeft(), QPointF(edge.left() + kRadius, edge.top()));
    path.lineTo(edge.right() - kRadius, edge.top());
    path.quadTo(edge.topRight(), QPointF(edge.right(), edge.top() + kRadius));
    path.lineTo(edge.bottomRight());
    return path;
}

/// Two chevrons and the number of tabs that they lead to.
class MoreButton final : public QToolButton {
  public:
    using QToolButton::QToolButton;

  protected:
    void paintEvent(QPaintEvent*) override {
        const QColor text = palette().color(QPalette::Text);
        const QColor base = palette().color(QPalette::Base);
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (underMouse() || isDown()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(mixed(base, text, isDown() ? 0.2 : 0.1));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 2, -1, -1), 4, 4);
        }
        painter.setPen(QPen(text, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        const double middle = height() / 2.0;
        for (const double x : {6.0, 10.0})
            painter.drawPolyline(QPolygonF{{x, middle - 3}, {x + 3, middle}, {x, middle + 3}});
        painter.drawText(QRect(14, 0, width() - 15, height()), Qt::AlignCenter, this->text());
    }
};

} // namespace

CProfTabCtrl::CProfTabCtrl(QWidget* parent) : QTabBar(parent), m_more(new MoreButton(this)), m_menu(new QMenu(this)) {
    setObjectName(QStringLiteral("tabStrip"));
    setAccessibleName(QStringLiteral("Tabs of the view"));
    FitFont();
    setExpanding(false);
    setDrawBase(false);
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideRight);
    setFocusPolicy(Qt::TabFocus);
    setMouseTracking(true);
    m_more->setObjectName(QStringLiteral("moreTabs"));
    m_more->setAccessibleName(QStringLiteral("More tabs"));
    m_more->setToolTip(QStringLiteral("More tabs (Down)"));
    // The arrow keys of the strip do the same.
    m_more->setFocusPolicy(Qt::NoFocus);
    m_more->hide();
    m_menu->setObjectName(QStringLiteral("otherTabs"));
    connect(m_more, &QToolButton::clicked, this, &CProfTabCtrl::ShowMenu);
    connect(this, &QTabBar::currentChanged, this, &CProfTabCtrl::FitTabs);
}

// The largest font in which all captions have room, within bounds.
void CProfTabCtrl::FitFont() {
    setFixedHeight(kHeight * logicalDpiY() / 96);
    m_captionFont = font();
    const int room = height() - kLines;
    const int smallest = kSmallestCaption * logicalDpiY() / 96;
    int size = qMin(QFontInfo(m_captionFont).pixelSize(), kLargestCaption * logicalDpiY() / 96);
    m_captionFont.setPixelSize(size);
    const auto isTooLarge = [this, room, smallest, &size] {
        return QFontMetrics(m_captionFont).height() > room || (size > smallest && LeastWidth() > width());
    };
    while (size > 1 && isTooLarge())
        m_captionFont.setPixelSize(--size);
}

void CProfTabCtrl::changeEvent(QEvent* event) {
    // Must precede the new layout of the tabs.
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        FitFont();
    QTabBar::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)
        FitTabs();
}

void CProfTabCtrl::resizeEvent(QResizeEvent* event) {
    FitTabs();
    QTabBar::resizeEvent(event);
}

// The selected tab first, then the others from the left.
std::vector<bool> CProfTabCtrl::TabsWithRoom() const {
    std::vector<bool> shown(static_cast<std::size_t>(count()), true);
    if (LeastWidth() <= width())
        return shown;
    const auto least = [this](int index) { return ContentsWidth(index) + 2 * kLeastPadding; };
    int room = width() - kMoreWidth * logicalDpiX() / 96 - 1;
    if (currentIndex() >= 0)
        room -= least(currentIndex());
    bool isFull = false;
    for (int i = 0; i < count(); ++i) {
        if (i == currentIndex())
            continue;
        room -= least(i);
        isFull = isFull || room < 0;
        shown[static_cast<std::size_t>(i)] = !isFull;
    }
    return shown;
}

void CProfTabCtrl::FitTabs() {
    if (m_isFitting)
        return;
    m_isFitting = true;
    FitFont();
    const std::vector<bool> shown = TabsWithRoom();
    const auto others = std::count(shown.begin(), shown.end(), false);
    // Before the tabs, which are laid out in the room that the button leaves.
    const int moreWidth = kMoreWidth * logicalDpiX() / 96;
    m_more->setText(QString::number(others));
    m_more->setGeometry(width() - moreWidth, 0, moreWidth, height() - 2);
    m_more->setVisible(others > 0);
    // The selected tab must become visible before another one is hidden.
    for (const bool isShowing : {true, false}) {
        for (int i = 0; i < count(); ++i) {
            if (shown[static_cast<std::size_t>(i)] == isShowing && isTabVisible(i) != isShowing)
                setTabVisible(i, isShowing);
        }
    }
    m_isFitting = false;
    update();
}

void CProfTabCtrl::ShowMenu() {
    m_menu->clear();
    for (int i = 0; i < count(); ++i) {
        if (!isTabVisible(i))
            m_menu->addAction(
                QString(tabText(i)).replace(u'&', QStringLiteral("&&")) +
                    (CountOf(i).text.isEmpty() ? QString() : QStringLiteral(" (") + CountOf(i).text + u')'),
                this, [this, i] { SelectTab(i); });
    }
    if (m_menu->isEmpty())
        return;
    m_menu->setActiveAction(m_menu->actions().front());
    m_menu->popup(m_more->mapToGlobal(QPoint(m_more->width() - m_menu->sizeHint().width(), height())));
}

void CProfTabCtrl::Hover(int index) {
    if (std::exchange(m_hovered, index) != index)
        update();
}

void CProfTabCtrl::mouseMoveEvent(QMouseEvent* event) {
    QTabBar::mouseMoveEvent(event);
    Hover(tabAt(event->position().toPoint()));
}

void CProfTabCtrl::leaveEvent(QEvent* event) {
    QTabBar::leaveEvent(event);
    Hover(-1);
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
    const int at = index >= 0 && index < count() ? index : count();
    // Before the tab, which is measured while it is inserted.
    m_counts.insert(m_counts.begin() + at, Count());
    insertTab(at, caption);
    setTabData(at, image);
    FitTabs();
}

void CProfTabCtrl::SetCaption(int index, const QString& caption) {
    if (tabText(index) == caption)
        return;
    setTabText(index, caption);
    FitTabs();
}

void CProfTabCtrl::SetCount(int index, int count, AlertMark mark, const QString& meaning) {
    setTabToolTip(index, meaning);
    setAccessibleTabName(
        index, meaning.isEmpty() ? QString() : QString(tabText(index)).remove(u'&') + QStringLiteral(", ") + meaning);
    Count now{count > 0 ? QString::number(std::min(count, kMostCount)) : QString(), mark};
    if (count > kMostCount)
        now.text += u'+';
    if (std::exchange(m_counts[static_cast<std::size_t>(index)], now) == now)
        return;
    setTabText(index, tabText(index)); // which measures the tabs again
    FitTabs();
}

QFont CProfTabCtrl::CountFont() const {
    QFont font(m_captionFont);
    font.setPixelSize(std::max(1, QFontInfo(m_captionFont).pixelSize() * 5 / 6));
    font.setBold(true);
    return font;
}

int CProfTabCtrl::CountWidth(int index) const {
    const QString& text = CountOf(index).text;
    if (text.isEmpty())
        return 0;
    const QFontMetrics metrics(CountFont());
    return kCountGap + std::max(metrics.horizontalAdvance(text) + kCountPadding, metrics.height());
}

int CProfTabCtrl::CaptionWidth(int index) const {
    return QFontMetrics(m_captionFont).horizontalAdvance(QString(tabText(index)).remove(u'&'));
}

int CProfTabCtrl::LeastWidth() const {
    int width = 1;
    for (int i = 0; i < count(); ++i)
        width += ContentsWidth(i) + 2 * kLeastPadding;
    return width;
}

int CProfTabCtrl::Room() const {
    return m_more->isHidden() ? width() : m_more->x();
}

int CProfTabCtrl::PaddingNow() const {
    int captions = 1;
    int shown = 0;
    for (int i = 0; i < count(); ++i) {
        captions += isTabVisible(i) ? ContentsWidth(i) : 0;
        shown += isTabVisible(i) ? 1 : 0;
    }
    return qBound(kLeastPadding, (Room() - captions) / qMax(2 * shown, 1), kPadding);
}

QSize CProfTabCtrl::tabSizeHint(int index) const {
    return {qMin(ContentsWidth(index) + 2 * PaddingNow(), qMax(Room() - 1, 1)), height()};
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
    else if (event->key() == Qt::Key_Down)
        ShowMenu();
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
    const QPainterPath outline = outlineOf(face);
    const bool isHovered = index == m_hovered && !selected;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline, isHovered ? mixed(colors.face, colors.background, 0.6) : colors.face);
    if (selected) {
        painter.save();
        painter.setClipPath(outline);
        painter.fillRect(QRect(face.left(), 0, face.width(), 3), palette().color(QPalette::Highlight));
        painter.restore();
    }
    painter.setPen(QPen(colors.outline, 1, Qt::SolidLine, Qt::FlatCap));
    painter.drawPath(outline);
    painter.setRenderHint(QPainter::Antialiasing, false);

    painter.setFont(m_captionFont);
    painter.setPen(colors.text);
    const QRect captionRect = face.adjusted(1, selected ? 2 : 0, -1, 0);
    const int sign = CountWidth(index);
    const int room = captionRect.width() - kLeastPadding - sign;
    const QString caption = painter.fontMetrics().elidedText(tabText(index), Qt::ElideRight, room);
    painter.drawText(captionRect.adjusted(0, 0, -sign, 0), Qt::AlignCenter | Qt::TextSingleLine, caption);
    if (sign > 0) {
        // Right of the caption, which is centred together with it.
        const int width = painter.fontMetrics().horizontalAdvance(caption);
        painter.setFont(CountFont());
        const int height = painter.fontMetrics().height();
        const int left = captionRect.left() + (captionRect.width() - sign + width) / 2 + kCountGap;
        paintAlertCount(painter, QRect(left, captionRect.center().y() - height / 2, sign - kCountGap, height),
                        CountOf(index).text, CountOf(index).mark, palette());
    }
    if (selected && hasFocus()) {
        QPen dots(colors.text, 1, Qt::DotLine);
        painter.setPen(dots);
        painter.drawRect(face.adjusted(3, 4, -4, -3));
    }
}

} // namespace tavix
