#include "access/SourceRowCursors.h"

#include "base/KvbDatavar.h"

namespace tavix {

bool MatchRowCursor::next() {
    for (; m_skip > 0; --m_skip)
        if (!m_rows.next())
            return false;
    return m_rows.next();
}

int MatchRowCursor::getColumnInt(int column) const {
    return KvbDatavar(m_rows.value(column)).toInt();
}

double MatchRowCursor::getColumnDouble(int column) const {
    return KvbDatavar(m_rows.value(column)).toDouble();
}

} // namespace tavix
