#include "nav/ui/NavigatorTabs.h"

#include <QStyleOptionTab>
#include <QStylePainter>

#include <algorithm>
#include <cmath>

namespace tavix {

namespace {

// In pixels, on each side of a title.
constexpr int kMostPadding = 12;
constexpr int kLeastPadding = 4;
constexpr int kLeastLetters = 3; // of a title that is cut

} // namespace

NavigatorTabs::NavigatorTabs(QWidget* parent) : QTabBar(parent) {
    setDocumentMode(true);
    setDrawBase(false);
    setExpanding(false);
    setElideMode(Qt::ElideRight);
    setUsesScrollButtons(false);
}

int NavigatorTabs::TextWidth(int index) const {
    // Rounded up: a title that lacks a fraction of a pixel would be cut.
    return static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(tabText(index)))) + 1;
}

int NavigatorTabs::Padding() const {
    int texts = 0;
    for (int i = 0; i < count(); ++i)
        texts += TextWidth(i);
    return count() == 0 ? kMostPadding : std::clamp((width() - texts) / (2 * count()), kLeastPadding, kMostPadding);
}

QSize NavigatorTabs::tabSizeHint(int index) const {
    return {TextWidth(index) + 2 * Padding(), QTabBar::tabSizeHint(index).height()};
}

QSize NavigatorTabs::minimumTabSizeHint(int index) const {
    int longest = 0;
    for (int i = 0; i < count(); ++i)
        longest = TextWidth(i) > TextWidth(longest) ? i : longest;
    if (index != longest)
        return tabSizeHint(index);
    // The style's own minimum is so wide that the other titles would be cut as well.
    const int least = fontMetrics().horizontalAdvance(tabText(index).left(kLeastLetters) + QChar(0x2026));
    return {least + 2 * kLeastPadding, QTabBar::minimumTabSizeHint(index).height()};
}

// Painted here, because the style would cut titles whose padding is below its own.
void NavigatorTabs::paintEvent(QPaintEvent*) {
    QStylePainter painter(this);
    for (int i = 0; i < count(); ++i) {
        QStyleOptionTab option;
        initStyleOption(&option, i);
        option.rect = tabRect(i);
        painter.drawControl(QStyle::CE_TabBarTabShape, option);
        const QRect room = option.rect.adjusted(kLeastPadding, 0, -kLeastPadding, 0);
        const QString title = fontMetrics().elidedText(tabText(i), Qt::ElideRight, room.width());
        painter.drawItemText(room, Qt::AlignCenter | Qt::TextSingleLine, palette(), isEnabled(), title,
                             foregroundRole());
        if (i == currentIndex() && hasFocus()) {
            QStyleOptionFocusRect focus;
            focus.initFrom(this);
            focus.rect = option.rect.adjusted(1, 1, -1, -2);
            painter.drawPrimitive(QStyle::PE_FrameFocusRect, focus);
        }
    }
}

} // namespace tavix
