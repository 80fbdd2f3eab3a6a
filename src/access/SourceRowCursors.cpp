#include "access/SourceRowCursors.h"

#include "base/KvbDatavar.h"

namespace tavix {

bool MatchRowCursor::next() {
    bool isOnRow = m_rows.next();
    for (; isOnRow && m_skip > 0; --m_skip)
        isOnRow = m_rows.next();
    return isOnRow;
}

int MatchRowCursor::getColumnInt(int column) const {
    return KvbDatavar(m_rows.value(column)).toInt();
}

double MatchRowCursor::getColumnDouble(int column) const {
    return KvbDatavar(m_rows.value(column)).toDouble();
}

} // namespace tavix
