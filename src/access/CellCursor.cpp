#include "access/CellCursor.h"

namespace tavix {

KvbString CellCursor::getColumnValue(int column) const {
    return isColumnNull(column) ? KvbString() : cell(column).toText();
}

int CellCursor::getColumnInt(int column) const {
    return isColumnNull(column) ? 0 : cell(column).toInt();
}

std::int64_t CellCursor::getColumnInt64(int column) const {
    return isColumnNull(column) ? 0 : cell(column).toInt64();
}

double CellCursor::getColumnDouble(int column) const {
    return isColumnNull(column) ? 0.0 : cell(column).toDouble();
}

bool CellCursor::isColumnValid(int column) const {
    return column >= 0 && column < getColumnCount();
}

} // namespace tavix
