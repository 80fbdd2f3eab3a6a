#include "grid/ui/CellDelegate.h"

#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "grid/ui/GridModel.h"
#include "grid/ui/Icons.h"
#include "grid/ui/Tints.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kPadding = 8;
constexpr int kIconGap = 6;
constexpr int kAlertCorner = 7;
// A cell shows one line; more of a long value is neither measured nor drawn.
constexpr std::size_t kShownBytes = 512;

QString singleLine(const std::string& text) {
    QString line = toQString(std::string_view(text).substr(0, kShownBytes));
    for (QChar& c : line) {
        if (c == QLatin1Char('\n') || c == QLatin1Char('\r') || c == QLatin1Char('\t'))
            c = QLatin1Char(' ');
    }
    return line;
}

struct CellGeometry {
    QRect icon;
    QRect text;
};

CellGeometry layOut(const QRect& rect, const GridCell& cell) {
    CellGeometry geometry{{}, rect.adjusted(kPadding, 0, -kPadding, 0)};
    if (cell.icon == CellIcon::None)
        return geometry;
    const int top = rect.top() + (rect.height() - kIconSize) / 2;
    if (cell.text.empty()) {
        geometry.icon = QRect(rect.left() + (rect.width() - kIconSize) / 2, top, kIconSize, kIconSize);
    } else {
        geometry.icon = QRect(rect.left() + kPadding - 2, top, kIconSize, kIconSize);
        geometry.text.setLeft(geometry.icon.right() + kIconGap);
    }
    return geometry;
}

} // namespace

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const GridCell cell = m_model.cell(index);
    const QPalette& colors = option.palette;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setClipRect(option.rect);

    if (selected)
        painter->fillRect(option.rect, colors.color(QPalette::Highlight));
    else if (option.features.testFlag(QStyleOptionViewItem::Alternate))
        painter->fillRect(option.rect, colors.color(QPalette::AlternateBase));
    else
        painter->fillRect(option.rect, colors.color(QPalette::Base));

    const CellGeometry geometry = layOut(option.rect, cell);
    if (cell.icon != CellIcon::None)
        paintIcon(*painter, geometry.icon, cell.icon, colors, selected);
    if (cell.alertMark) {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(tint::alert(colors));
        const QPointF corner(option.rect.right() + 1, option.rect.top());
        painter->drawPolygon(QPolygonF{corner, corner - QPointF(kAlertCorner, 0), corner + QPointF(0, kAlertCorner)});
    }

    QColor textColor = colors.color(selected ? QPalette::HighlightedText : QPalette::Text);
    QFont font = option.font;
    if (cell.state != CellState::Ordinary) {
        font.setItalic(true);
        textColor = mixed(textColor, colors.color(selected ? QPalette::Highlight : QPalette::Base), 0.45);
    }
    painter->setFont(font);
    painter->setPen(textColor);
    const QString text = singleLine(cell.text);
    painter->drawText(geometry.text, static_cast<int>(toQtAlignment(cell.alignment)) | Qt::TextSingleLine,
                      QFontMetrics(font).elidedText(text, Qt::ElideRight, geometry.text.width()));

    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QColor ring = colors.color(selected ? QPalette::HighlightedText : QPalette::Highlight);
        ring.setAlphaF(0.55F);
        painter->setRenderHint(QPainter::Antialiasing, false);
        painter->setPen(ring);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const GridCell cell = m_model.cell(index);
    const int icon = cell.icon == CellIcon::None ? 0 : kIconSize + kIconGap;
    return {2 * kPadding + icon + option.fontMetrics.horizontalAdvance(singleLine(cell.text)),
            std::max(kIconSize, option.fontMetrics.height()) + 8};
}

bool CellDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const GridCell cell = m_model.cell(index);
    const QRect textRect = layOut(option.rect, cell).text;
    QStringList lines;
    // A value with markup in it is shown as the text it is.
    if (option.fontMetrics.horizontalAdvance(singleLine(cell.text)) > textRect.width())
        lines << toQString(std::string_view(cell.text).substr(0, 4 * kShownBytes)).toHtmlEscaped();
    if (const QString meaning = iconMeaning(cell.icon); !meaning.isEmpty())
        lines << meaning;
    if (cell.alertMark)
        lines << QStringLiteral("An alert watches this figure");
    if (lines.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(event->globalPos(), QStringLiteral("<qt>%1</qt>").arg(lines.join(QStringLiteral("<br>"))),
                           view);
    return true;
}

} // namespace tavix
