#include "access/SourceRowCursors.h"

#include "access/StatementCursor.h"
#include "base/GenException.h"

namespace tavix {

bool MatchRowCursor::next() {
    bool isOnRow = m_rows.next();
    for (; isOnRow && m_skip > 0; --m_skip)
        isOnRow = m_rows.next();
    if (!isOnRow && !m_rows.isComplete())
        throw GenException(kReadingStopped);
    return isOnRow;
}

} // namespace tavix
