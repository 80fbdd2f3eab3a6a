#include "access/CacheCursor.h"

#include <utility>

namespace tavix {

CacheCursor::CacheCursor(ProfileCursor& source) {
    int columns = source.getColumnCount();
    if (columns <= 0)
        return;
    while (source.next()) {
        Row& row = m_rows.emplace_back();
        row.reserve(static_cast<std::size_t>(columns));
        for (int column = 0; column < columns; ++column)
            row.emplace_back(source.getColumnValue(column));
    }
    m_names.reserve(static_cast<std::size_t>(columns));
    for (int column = 0; column < columns; ++column)
        m_names.push_back(source.getColumnName(column));
    m_warning = source.getWarning();
}

bool CacheCursor::next() {
    // The end is also the position before the first row, so that the next call starts over.
    m_current = m_current == m_rows.end() ? m_rows.begin() : std::next(m_current);
    return m_current != m_rows.end();
}

int CacheCursor::getColumnCount() const {
    return m_rows.empty() ? 0 : static_cast<int>(m_names.size());
}

KvbString CacheCursor::getColumnName(int column) const {
    auto index = static_cast<std::size_t>(column);
    return column >= 0 && index < m_names.size() ? m_names[index] : KvbString("");
}

KvbString CacheCursor::getColumnValue(int column) const {
    const KvbDatavar* value = find(column);
    return value && !value->isNull() ? value->toText() : KvbString("");
}

KvbDatavar CacheCursor::cell(int column) const {
    return *find(column);
}

bool CacheCursor::isColumnNull(int column) const {
    const KvbDatavar* value = find(column);
    return !value || value->isNull();
}

bool CacheCursor::isColumnValid(int) const {
    return true;
}

void CacheCursor::setColumnValue(int column, KvbDatavar value) {
    if (find(column))
        (*m_current)[static_cast<std::size_t>(column)] = std::move(value);
}

const KvbDatavar* CacheCursor::find(int column) const {
    auto index = static_cast<std::size_t>(column);
    if (m_current == m_rows.end() || column < 0 || index >= m_current->size())
        return nullptr;
    return &(*m_current)[index];
}

} // namespace tavix
