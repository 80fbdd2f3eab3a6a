#include "access/SourceRowCursors.h"

namespace tavix {

bool MatchRowCursor::next() {
    bool isOnRow = m_rows.next();
    for (; isOnRow && m_skip > 0; --m_skip)
        isOnRow = m_rows.next();
    return isOnRow;
}

} // namespace tavix
