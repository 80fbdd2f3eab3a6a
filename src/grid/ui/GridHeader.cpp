#include "grid/ui/GridHeader.h"

#include "base/ui/Theme.h"
#include "grid/ui/GridModel.h"
#include "grid/ui/Tints.h"

#include <QPainter>

#include <algorithm>

namespace tavix {

namespace {

constexpr int kPadding = 8;
constexpr int kArrow = 8;
constexpr double kMarkSize = 0.85;
// The margin above a heading that has a mark below it.
constexpr int kAboveHeading = 6;
// Narrower columns hold a single letter, which is centered.
constexpr int kNarrow = 40;
constexpr int kNarrowMargin = 8;

void paintArrow(QPainter& painter, const QRectF& rect, bool descending, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const QPointF middle = rect.center();
    const double height = descending ? 2.0 : -2.0;
    painter.drawPolyline(QPolygonF{{middle.x() - 3.5, middle.y() - height},
                                   {middle.x(), middle.y() + height},
                                   {middle.x() + 3.5, middle.y() - height}});
    painter.restore();
}

} // namespace

GridHeader::GridHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    setSectionsClickable(true);
    setHighlightSections(false);
    setSectionsMovable(false);
    setMinimumSectionSize(20);
    setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setMouseTracking(true);
}

QString GridHeader::MarkOf(int section) const {
    return model()->headerData(section, orientation(), GridModel::kMarkRole).toString();
}

bool GridHeader::HasMarks() const {
    for (int section = 0; section < count(); ++section) {
        if (!MarkOf(section).isEmpty())
            return true;
    }
    return false;
}

QFont GridHeader::MarkFont() const {
    QFont small = font();
    small.setPointSizeF(small.pointSizeF() * kMarkSize);
    return small;
}

int GridHeader::NeededWidth(int section) const {
    const QString heading = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    const int text = QFontMetrics(HeadingFont()).horizontalAdvance(heading);
    if (text + kNarrowMargin < kNarrow)
        return text + kNarrowMargin;
    const int mark = QFontMetrics(MarkFont()).horizontalAdvance(MarkOf(section));
    return std::max(text + kArrow + 2, mark) + 2 * kPadding + 1;
}

QFont GridHeader::HeadingFont() const {
    QFont bold = font();
    bold.setWeight(QFont::DemiBold);
    return bold;
}

QSize GridHeader::sizeHint() const {
    const int marks = HasMarks() ? QFontMetrics(MarkFont()).height() : 0;
    return {QHeaderView::sizeHint().width(), fontMetrics().height() + marks + 14};
}

void GridHeader::paintEvent(QPaintEvent* event) {
    m_hasMarks = HasMarks();
    QHeaderView::paintEvent(event);
    // The heading row extends beyond the last column.
    const int end = length() - offset();
    if (end >= viewport()->width())
        return;
    QPainter painter(viewport());
    const QRect rest(qMax(0, end), 0, viewport()->width() - qMax(0, end), viewport()->height());
    painter.fillRect(rest, palette().color(QPalette::Window));
    painter.fillRect(QRect(rest.left(), rest.bottom(), rest.width(), 1), tint::line(palette()));
}

void GridHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
    const QPalette& colors = palette();
    const QColor line = tint::line(colors);
    painter->save();
    painter->fillRect(rect, colors.color(QPalette::Window));
    painter->fillRect(QRect(rect.left(), rect.bottom(), rect.width(), 1), line);
    painter->fillRect(QRect(rect.right(), rect.top() + 7, 1, rect.height() - 14), line);

    const bool narrow = rect.width() < kNarrow;
    const bool sorted = isSortIndicatorShown() && sortIndicatorSection() == section;
    QRect textRect = narrow ? rect : rect.adjusted(kPadding, 0, -kPadding, -1);
    if (!narrow && rect.left() < m_freeWidth)
        textRect.setRight(std::min(textRect.right(), m_freeWidth - kPadding));
    QRect markRect = textRect;
    // If any column has a mark, all headings are drawn in the upper line.
    if (m_hasMarks) {
        textRect.setTop(rect.top() + kAboveHeading);
        textRect.setHeight(fontMetrics().height());
        markRect.setTop(textRect.bottom() + 1);
        markRect.setHeight(QFontMetrics(MarkFont()).height());
    }
    if (sorted) {
        const QRectF arrow =
            narrow ? QRectF(rect.left(), rect.bottom() - 7, rect.width(), 5)
                   : QRectF(rect.right() - kPadding - kArrow + 3, textRect.top(), kArrow, textRect.height());
        paintArrow(*painter, arrow, sortIndicatorOrder() == Qt::DescendingOrder, colors.color(QPalette::WindowText));
        if (!narrow)
            textRect.setRight(textRect.right() - kArrow - 2);
    }
    const auto alignment =
        narrow
            ? Qt::Alignment(Qt::AlignCenter)
            : Qt::Alignment(model()->headerData(section, orientation(), Qt::TextAlignmentRole).value<Qt::Alignment>());
    const QFont headingFont = HeadingFont();
    painter->setFont(headingFont);
    painter->setPen(sorted ? colors.color(QPalette::WindowText)
                           : mixed(colors.color(QPalette::WindowText), colors.color(QPalette::Window), 0.25));
    const QString text = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    painter->drawText(textRect, static_cast<int>(alignment) | Qt::TextSingleLine,
                      QFontMetrics(headingFont).elidedText(text, Qt::ElideRight, textRect.width()));
    if (const QString mark = m_hasMarks ? MarkOf(section) : QString(); !mark.isEmpty()) {
        painter->setFont(MarkFont());
        painter->setPen(quietText(colors));
        const int across = static_cast<int>(alignment & Qt::AlignHorizontal_Mask);
        painter->drawText(markRect, across | Qt::AlignVCenter | Qt::TextSingleLine,
                          QFontMetrics(MarkFont()).elidedText(mark, Qt::ElideRight, markRect.width()));
    }
    painter->restore();
}

} // namespace tavix
