#include "nav/ui/TreeDelegate.h"

#include "base/ui/Theme.h"
#include "grid/ui/AlertSigns.h"
#include "grid/ui/Icons.h"
#include "nav/ui/TreeModel.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kGap = 6;
constexpr int kRightPadding = 10;
// In a narrow pane the count is not drawn.
constexpr int kLeastNameWidth = 70;

} // namespace

void TreeDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QPalette& colors = option.palette;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setClipRect(option.rect);
    const QRect icon(option.rect.left() + 2, option.rect.top() + (option.rect.height() - kIconSize) / 2, kIconSize,
                     kIconSize);
    QColor text = colors.color(selected ? QPalette::HighlightedText : QPalette::Text);
    if (selected)
        painter->fillRect(option.rect, colors.color(QPalette::Highlight));
    paintIcon(*painter, icon, static_cast<CellIcon>(index.data(TreeModel::IconRole).toInt()), colors, selected);

    const auto alert = static_cast<AlertMark>(index.data(TreeModel::AlertRole).toInt());
    // Without the focus, the selection is pale enough for the colours of alerts.
    const bool onHighlight = selected && option.widget && option.widget->hasFocus();
    paintAlertDot(*painter, QPointF(icon.topRight()) + QPointF(0, kAlertDotSize / 2.0 - 1), alert, colors, onHighlight);

    QRect name = option.rect;
    name.setLeft(icon.right() + kGap);
    name.setRight(name.right() - kRightPadding);
    const QString count = index.data(TreeModel::CountTextRole).toString();
    const int countWidth = option.fontMetrics.horizontalAdvance(count);
    if (!count.isEmpty() && name.width() - countWidth - kGap >= kLeastNameWidth) {
        painter->setPen(mixed(text, colors.color(selected ? QPalette::Highlight : QPalette::Base), 0.45));
        painter->drawText(name, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine, count);
        name.setRight(name.right() - countWidth - 2 * kGap);
    }
    painter->setPen(text);
    painter->drawText(name, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      option.fontMetrics.elidedText(index.data().toString(), Qt::ElideRight, name.width()));
    painter->restore();
}

QSize TreeDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const {
    return {120, std::max(kIconSize, option.fontMetrics.height()) + 10};
}

bool TreeDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    // Names come from the data and may look like markup.
    const QString text = index.data(Qt::ToolTipRole).toString().left(2000).toHtmlEscaped();
    QToolTip::showText(event->globalPos(), QStringLiteral("<qt style=\"white-space:pre-wrap\">%1</qt>").arg(text),
                       view);
    return true;
}

} // namespace tavix
