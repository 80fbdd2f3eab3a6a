#include "access/DistributionCursor.h"

#include "base/GenException.h"
#include "base/KvbDatavar.h"
#include "base/NumberText.h"

#include <utility>

namespace tavix {

Result<std::unique_ptr<DistributionCursor>> DistributionCursor::open(std::shared_ptr<ViewerSession> session,
                                                                     const repository::DistributionKey& key,
                                                                     std::int64_t rows, const layout::Layout& layout) {
    std::unique_ptr<DistributionCursor> cursor(new DistributionCursor(std::move(session), key, rows, layout));
    if (auto first = cursor->m_reader.next(); !first)
        return first.error();
    return cursor;
}

DistributionCursor::DistributionCursor(std::shared_ptr<ViewerSession> session, const repository::DistributionKey& key,
                                       std::int64_t rows, const layout::Layout& layout)
    : m_session(std::move(session)),
      m_reader(*m_session->connection, key, rows),
      m_layout(layout),
      m_hasRank(key.kind == repository::DistributionKind::Patterns),
      m_total(rows) {}

bool DistributionCursor::next() {
    if (m_rank >= m_total) {
        m_rank = m_total + 1;
        return false;
    }
    if (*m_session->closed)
        throw GenException("The repository was closed while a result was being read.");
    if (m_nextInBlock == m_reader.block().rowCount()) {
        auto more = m_reader.next();
        if (!more || !*more) {
            m_rank = m_total + 1;
            throw GenException(more ? KvbString("A stored distribution is damaged.") : KvbString(more.error().text));
        }
        m_nextInBlock = 0;
    }
    m_row = m_reader.block().at(m_nextInBlock++);
    ++m_rank;
    return true;
}

int DistributionCursor::getColumnCount() const {
    return static_cast<int>(m_layout.columns.size());
}

KvbString DistributionCursor::getColumnName(int column) const {
    return isColumnValid(column) ? KvbString(m_layout.columns[static_cast<std::size_t>(column)].name) : KvbString();
}

KvbString DistributionCursor::getColumnValue(int column) const {
    Role shown = role(column);
    if (shown == Role::None || (shown == Role::Value && m_row.isNull))
        return {};
    return shown == Role::Value ? KvbString(m_row.value) : KvbString(formatInteger(number(shown)));
}

int DistributionCursor::getColumnInt(int column) const {
    Role shown = role(column);
    return shown == Role::Rank || shown == Role::Count ? KvbDatavar(number(shown)).toInt()
                                                       : KvbDatavar(getColumnValue(column)).toInt();
}

double DistributionCursor::getColumnDouble(int column) const {
    Role shown = role(column);
    return shown == Role::Rank || shown == Role::Count ? static_cast<double>(number(shown))
                                                       : KvbDatavar(getColumnValue(column)).toDouble();
}

bool DistributionCursor::isColumnNull(int column) const {
    Role shown = role(column);
    return shown == Role::None || (shown == Role::Value && m_row.isNull);
}

bool DistributionCursor::isColumnValid(int column) const {
    return column >= 0 && column < getColumnCount();
}

DistributionCursor::Role DistributionCursor::role(int column) const {
    if (!isColumnValid(column) || m_rank < 1 || m_rank > m_total)
        return Role::None;
    constexpr Role kRoles[] = {Role::Rank, Role::Value, Role::Count};
    return kRoles[m_hasRank ? column : column + 1];
}

std::int64_t DistributionCursor::number(Role shown) const {
    return shown == Role::Rank ? m_rank : static_cast<std::int64_t>(m_row.count);
}

} // namespace tavix
