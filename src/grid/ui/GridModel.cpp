#include "grid/ui/GridModel.h"

#include "base/NullText.h"
#include "base/ui/QtText.h"
#include "grid/GridCopy.h"
#include "grid/ui/Icons.h"

#include <algorithm>

namespace tavix {

namespace {

// A table view sums row heights in an int, which limits the number of rows.
constexpr std::int64_t kMostRows = 50'000'000;

QString accessibleText(const GridCell& cell) {
    QStringList parts;
    if (cell.state == CellState::Null && cell.text.empty())
        parts << toQString(kNullValue);
    else if (!cell.text.empty())
        parts << toQString(withMark(cell.text, cell.mark));
    if (const QString meaning = iconMeaning(cell.icon); !meaning.isEmpty())
        parts << meaning;
    if (cell.alert != AlertMark::None)
        parts << toQString(alertMarkText(cell.alert));
    return parts.join(QStringLiteral(", "));
}

} // namespace

Qt::Alignment toQtAlignment(CellAlignment alignment) {
    switch (alignment) {
    case CellAlignment::Right:
        return Qt::AlignRight | Qt::AlignVCenter;
    case CellAlignment::Center:
        return Qt::AlignCenter;
    case CellAlignment::Left:
        break;
    }
    return Qt::AlignLeft | Qt::AlignVCenter;
}

void GridModel::setSource(CUGDataSource* source) {
    beginResetModel();
    m_source = source;
    endResetModel();
}

void GridModel::sourceChanged() {
    beginResetModel();
    endResetModel();
}

void GridModel::orderChanged() {
    if (const int rows = rowCount(); rows > 0)
        Q_EMIT dataChanged(index(0, 0), index(rows - 1, columnCount() - 1));
}

GridCell GridModel::cell(const QModelIndex& index) const {
    if (!m_source || !index.isValid() || index.row() >= rowCount() || index.column() >= columnCount())
        return {};
    return m_source->GetCell(index.column(), index.row());
}

std::string GridModel::toolTip(const QModelIndex& index) const {
    if (!m_source || !index.isValid() || index.row() >= rowCount() || index.column() >= columnCount())
        return {};
    return m_source->GetToolTip(index.column(), index.row());
}

int GridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !m_source ? 0 : static_cast<int>(std::min(m_source->GetRowCount(), kMostRows));
}

int GridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() || !m_source ? 0 : m_source->GetColumnCount();
}

QVariant GridModel::data(const QModelIndex& index, int role) const {
    switch (role) {
    case Qt::DisplayRole:
        return toQString(cell(index).text);
    case Qt::AccessibleTextRole:
        return accessibleText(cell(index));
    case Qt::TextAlignmentRole:
        return QVariant(toQtAlignment(cell(index).alignment));
    default:
        return {};
    }
}

QVariant GridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= columnCount())
        return {};
    const GridColumn column = m_source->GetColumn(section);
    switch (role) {
    case Qt::DisplayRole:
        return toQString(column.heading);
    case kMarkRole:
        return toQString(column.mark);
    case Qt::AccessibleTextRole:
        return toQString(withMark(column.heading, column.mark));
    case Qt::ToolTipRole:
        return toQString(column.toolTip.empty() ? withMark(column.heading, column.mark) : column.toolTip);
    case Qt::TextAlignmentRole:
        return QVariant(toQtAlignment(column.alignment));
    default:
        return {};
    }
}

} // namespace tavix
