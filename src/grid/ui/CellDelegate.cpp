#include "grid/ui/CellDelegate.h"

#include "base/NullText.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "grid/InvisibleText.h"
#include "grid/ui/AlertSigns.h"
#include "grid/ui/CellPictures.h"
#include "grid/ui/GridModel.h"
#include "grid/ui/Icons.h"
#include "grid/ui/Tints.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace tavix {

namespace {

constexpr int kPadding = 8;
constexpr int kIconGap = 6;
constexpr int kBarMargin = 2;
constexpr int kMarkGap = 5;
constexpr double kMarkFaintness = 0.45;
constexpr double kStateFaintness = 0.45;
constexpr double kLineFaintness = 0.6;
// Of the line of a cell's picture, beside the text.
constexpr int kLineRoom = 64;
constexpr int kLineMargin = 6;
constexpr int kPartsRoom = 70;
constexpr int kLeastBar = 2;
// A cell shows one line; the rest of a long value is neither measured nor drawn.
constexpr std::size_t kShownBytes = 512;

bool breaksLine(QChar c) {
    return (c >= u'\t' && c <= u'\r') || c == QChar(0x85) || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

QString singleLine(const std::string& text) {
    QString line = toQString(std::string_view(text).substr(0, kShownBytes));
    std::replace_if(line.begin(), line.end(), breaksLine, QChar(u' '));
    return line;
}

bool isAtRightEdge(CellIcon icon) {
    return icon == CellIcon::BeyondFence || icon == CellIcon::FarBeyondFence;
}

// From the left; the smallest share is visible.
QRect barRect(const QRect& rect, double share) {
    const QRect room = rect.adjusted(kBarMargin, kBarMargin, -kBarMargin, -kBarMargin);
    const int width = std::max(kLeastBar, static_cast<int>(std::lround(std::min(share, 1.0) * room.width())));
    return {room.left(), room.top(), width, room.height()};
}

// The two halves touch only where both bars are drawn, one for each run.
void paintBarsOfTwoRuns(QPainter& painter, const QRect& rect, const GridCell& cell, const QPalette& colors,
                        const QColor& background, bool selected) {
    const int half = rect.height() / 2;
    const QRect upper(rect.left(), rect.top(), rect.width(), half);
    const QRect lower(rect.left(), rect.top() + half, rect.width(), rect.height() - half);
    painter.fillRect(barRect(upper.adjusted(0, 1, 0, kBarMargin - 1), cell.barBefore),
                     tint::barBefore(colors, background, selected));
    painter.fillRect(barRect(lower.adjusted(0, 1 - kBarMargin, 0, -1), std::max(cell.bar, 0.0)),
                     tint::barAfter(colors, background, selected));
}

struct CellGeometry {
    QRect icon;
    QRect line; ///< of a picture
    QRect text;
};

CellGeometry layOut(const QRect& rect, const GridCell& cell) {
    CellGeometry geometry{{}, {}, rect.adjusted(kPadding, 0, -kPadding, 0)};
    if (!cell.picture.line.empty()) {
        geometry.line = geometry.text.adjusted(0, kLineMargin, 0, -kLineMargin);
        geometry.line.setWidth(kLineRoom);
        geometry.text.setLeft(geometry.line.right() + kPadding);
    }
    if (cell.icon == CellIcon::None)
        return geometry;
    const int top = rect.top() + (rect.height() - kIconSize) / 2;
    if (isAtRightEdge(cell.icon)) {
        geometry.icon = QRect(rect.right() - kPadding - kIconSize + 3, top, kIconSize, kIconSize);
        geometry.text.setRight(geometry.icon.left() - kIconGap);
    } else if (cell.text.empty()) {
        geometry.icon = QRect(rect.left() + (rect.width() - kIconSize) / 2, top, kIconSize, kIconSize);
    } else {
        geometry.icon = QRect(rect.left() + kPadding - 2, top, kIconSize, kIconSize);
        geometry.text.setLeft(geometry.icon.right() + kIconGap);
    }
    return geometry;
}

} // namespace

// "(null value)" and "(Unknown)" are not values of the data, so their characters are never drawn as signs.
QString CellDelegate::paintedText(const GridCell& cell) const {
    // The text is the meaning of the bar, for readers and copies.
    if (!cell.picture.parts.empty())
        return {};
    if (cell.state == CellState::Null && cell.text.empty())
        return toQString(kNullValue);
    if (!cell.shown.empty())
        return toQString(cell.shown);
    return m_showsInvisible && cell.state == CellState::Ordinary ? toQString(showInvisible(cell.text, kShownBytes))
                                                                 : singleLine(cell.text);
}

void CellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const GridCell cell = m_model.cell(index);
    const QPalette& colors = option.palette;
    const bool selected = option.state.testFlag(QStyle::State_Selected);
    painter->save();
    painter->setClipRect(option.rect);

    const bool alternate = option.features.testFlag(QStyleOptionViewItem::Alternate);
    const bool hasFocus = option.widget && option.widget->hasFocus();
    const bool onHighlight = selected && hasFocus;
    const tint::Selection selection = tint::selection(colors, hasFocus);
    const QColor background =
        selected ? selection.background : colors.color(alternate ? QPalette::AlternateBase : QPalette::Base);
    painter->fillRect(option.rect, background);
    if (cell.barBefore >= 0)
        paintBarsOfTwoRuns(*painter, option.rect, cell, colors, background, onHighlight);
    else if (cell.bar > 0)
        painter->fillRect(barRect(option.rect, cell.bar), tint::bar(colors, background, onHighlight));

    // Half a number would be read as another one.
    QRect free = option.rect;
    if (free.left() < m_freeWidth)
        free.setRight(std::min(free.right(), m_freeWidth - 1));
    const CellGeometry geometry = layOut(free, cell);
    if (cell.icon != CellIcon::None)
        paintIcon(*painter, geometry.icon, cell.icon, colors, onHighlight);
    paintAlertCorner(*painter, option.rect, cell.alert, colors, background, onHighlight);

    QColor textColor = selected ? selection.text : colors.color(QPalette::Text);
    QFont font = option.font;
    if (cell.state != CellState::Ordinary) {
        font.setItalic(true);
        textColor = mixed(textColor, background, kStateFaintness);
    }
    painter->setFont(font);
    painter->setPen(textColor);
    if (!cell.picture.line.empty()) {
        // Lines that move stand out.
        const QColor quiet = mixed(textColor, background, kLineFaintness);
        const QColor loud = onHighlight ? textColor : tint::accent(colors);
        paintLine(*painter, geometry.line, cell.picture, isFlat(cell.picture) ? quiet : loud);
    }
    if (!cell.picture.parts.empty())
        paintParts(*painter, geometry.text, cell.picture, colors, background);
    const QString text = QFontMetrics(font).elidedText(paintedText(cell), Qt::ElideRight, geometry.text.width());
    const int inLine = static_cast<int>(toQtAlignment(cell.alignment)) | Qt::TextSingleLine;
    painter->drawText(geometry.text, inLine, text);
    if (!cell.mark.empty()) {
        const QRect room = geometry.text.adjusted(QFontMetrics(font).horizontalAdvance(text) + kMarkGap, 0, 0, 0);
        painter->setPen(mixed(textColor, background, kMarkFaintness));
        painter->drawText(room, static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextSingleLine,
                          QFontMetrics(font).elidedText(toQString(cell.mark), Qt::ElideRight, room.width()));
    }

    if (option.state.testFlag(QStyle::State_HasFocus)) {
        QColor ring = onHighlight ? selection.text : colors.color(QPalette::Highlight);
        ring.setAlphaF(0.55F);
        painter->setRenderHint(QPainter::Antialiasing, false);
        painter->setPen(ring);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
    }
    painter->restore();
}

int CellDelegate::neededWidth(const GridCell& cell, const QFont& font) const {
    if (!cell.picture.parts.empty())
        return kPartsRoom + 2 * kPadding;
    QFont drawn(font);
    drawn.setItalic(cell.state != CellState::Ordinary);
    const QFontMetrics metrics(drawn);
    const int icon = cell.icon == CellIcon::None ? 0 : kIconSize + kIconGap;
    const int line = cell.picture.line.empty() ? 0 : kLineRoom + kPadding;
    const int mark = cell.mark.empty() ? 0 : kMarkGap + metrics.horizontalAdvance(toQString(cell.mark));
    return 2 * kPadding + icon + line + metrics.horizontalAdvance(paintedText(cell)) + mark + 1;
}

QSize CellDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    return {neededWidth(m_model.cell(index), option.font), std::max(kIconSize, option.fontMetrics.height()) + 8};
}

bool CellDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index) {
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const GridCell cell = m_model.cell(index);
    const QRect textRect = layOut(option.rect, cell).text;
    QStringList lines;
    // A value may contain markup, which must not be interpreted.
    if (!cell.picture.parts.empty() || (!cell.shown.empty() && cell.shown != cell.text) ||
        option.fontMetrics.horizontalAdvance(paintedText(cell)) > textRect.width())
        lines << (m_showsInvisible && cell.state == CellState::Ordinary
                      ? toQString(showInvisible(cell.text, 4 * kShownBytes))
                      : toQString(std::string_view(cell.text).substr(0, 4 * kShownBytes)))
                     .toHtmlEscaped();
    if (const std::string more = m_model.toolTip(index); !more.empty())
        lines << toQString(more).toHtmlEscaped().replace(u'\n', QStringLiteral("<br>"));
    if (const QString meaning = iconMeaning(cell.icon); !meaning.isEmpty())
        lines << meaning;
    if (lines.isEmpty())
        QToolTip::hideText();
    else
        QToolTip::showText(event->globalPos(), QStringLiteral("<qt>%1</qt>").arg(lines.join(QStringLiteral("<br>"))),
                           view);
    return true;
}

} // namespace tavix
