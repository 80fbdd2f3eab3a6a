#include "access/DistributionCursor.h"

#include "base/GenException.h"
#include "base/KvbDatavar.h"
#include "base/NumberText.h"

#include <utility>

namespace tavix {

Result<std::unique_ptr<DistributionCursor>> DistributionCursor::open(std::shared_ptr<ViewerSession> session,
                                                                     const repository::DistributionKey& key,
                                                                     std::int64_t rows, const layout::Layout& layout,
                                                                     std::unique_ptr<DistributionFilter> filter) {
    std::unique_ptr<DistributionCursor> cursor(
        new DistributionCursor(std::move(session), key, rows, layout, std::move(filter)));
    if (auto first = cursor->m_reader.next(); !first)
        return first.error();
    return cursor;
}

DistributionCursor::DistributionCursor(std::shared_ptr<ViewerSession> session, const repository::DistributionKey& key,
                                       std::int64_t rows, const layout::Layout& layout,
                                       std::unique_ptr<DistributionFilter> filter)
    : m_session(std::move(session)),
      m_reader(*m_session->connection, key, rows),
      m_layout(layout),
      m_hasRank(key.kind == repository::DistributionKind::Patterns),
      m_total(rows),
      m_filter(std::move(filter)) {}

bool DistributionCursor::next() {
    if (m_rank >= m_total) {
        m_rank = m_total + 1;
        return false;
    }
    if (*m_session->closed)
        throw GenException("The repository was closed while a result was being read.");
    while (m_nextInBlock == m_rowsInBlock) {
        if (!enterBlock()) {
            m_rank = m_total + 1;
            return false;
        }
    }
    const std::size_t row = m_filter ? m_passing[m_nextInBlock] : m_nextInBlock;
    ++m_nextInBlock;
    m_row = m_reader.block().at(row);
    m_rank = m_reader.firstRow() + static_cast<std::int64_t>(row) + 1;
    return true;
}

bool DistributionCursor::enterBlock() {
    const auto fail = [&](const Error& error) {
        m_rank = m_total + 1;
        throw GenException(error.text);
    };
    // open() has read the first block.
    if (m_isEntered) {
        if (m_filter && m_filter->isDone())
            return false;
        auto more = m_reader.next();
        if (!more)
            fail(more.error());
        if (!*more)
            return false;
    }
    m_isEntered = true;
    m_nextInBlock = 0;
    m_rowsInBlock = m_reader.block().rowCount();
    if (m_filter) {
        auto passing = m_filter->passing(m_reader.block(), m_reader.firstRow());
        if (!passing)
            fail(passing.error());
        m_passing = *passing;
        m_rowsInBlock = m_passing.size();
    }
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

KvbString DistributionCursor::getWarning() const {
    return m_filter ? m_filter->warning() : KvbString();
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
