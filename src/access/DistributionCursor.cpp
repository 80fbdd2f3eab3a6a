#include "access/DistributionCursor.h"

#include "base/GenException.h"

#include <utility>

namespace tavix {

Result<std::unique_ptr<DistributionCursor>> DistributionCursor::open(std::shared_ptr<ViewerSession> session,
                                                                     const repository::DistributionKey& key,
                                                                     std::int64_t rows, const layout::Layout& layout,
                                                                     std::unique_ptr<DistributionFilter> filter,
                                                                     PrViewDisplayMessage* sink) {
    std::unique_ptr<DistributionCursor> cursor(
        new DistributionCursor(std::move(session), key, rows, layout, std::move(filter), sink));
    if (auto first = cursor->m_reader.next(); !first)
        return first.error();
    return cursor;
}

DistributionCursor::DistributionCursor(std::shared_ptr<ViewerSession> session, const repository::DistributionKey& key,
                                       std::int64_t rows, const layout::Layout& layout,
                                       std::unique_ptr<DistributionFilter> filter, PrViewDisplayMessage* sink)
    : m_session(std::move(session)),
      m_reader(*m_session->connection, key, rows),
      m_layout(layout),
      m_rows(rows),
      m_sink(sink),
      m_hasRank(key.kind == repository::DistributionKind::Patterns),
      m_filter(std::move(filter)) {}

bool DistributionCursor::next() {
    m_isOnRow = false;
    while (m_nextInBlock == m_rowsInBlock) {
        if (m_isDone || !enterBlock())
            return false;
    }
    requireOpen();
    m_row = m_filter ? m_passing[m_nextInBlock] : m_nextInBlock;
    ++m_nextInBlock;
    m_isOnRow = true;
    return true;
}

bool DistributionCursor::enterBlock() {
    m_isDone = true; // unless nothing fails
    m_nextInBlock = m_rowsInBlock = 0;
    // open() has read the first block.
    if (m_isEntered) {
        if (!m_reader.hasMore() || (m_filter && m_filter->isDone()))
            return false;
        if (!goesOn())
            throw GenException(kReadingStopped);
        requireOpen();
        auto more = m_reader.next();
        if (!more)
            throw GenException(more.error().text);
    }
    m_isEntered = true;
    const repository::UnpackedBlock& block = m_reader.block();
    if (m_filter) {
        auto passing = m_filter->passing(block, m_reader.firstRow(), [this] { return goesOn(); });
        if (!passing)
            throw GenException(passing.error().text);
        m_passing = *passing;
    }
    m_rowsInBlock = m_filter ? m_passing.size() : block.rowCount();
    m_isDone = false;
    return true;
}

bool DistributionCursor::goesOn() const {
    const std::int64_t passed = m_reader.firstRow() + static_cast<std::int64_t>(m_reader.block().rowCount());
    PrViewDisplayMessage* const sink = m_sink ? m_sink : m_session->sink;
    return !sink || sink->progress(m_filter ? "Filtering" : "Reading", passed, m_rows);
}

void DistributionCursor::requireOpen() const {
    if (*m_session->closed)
        throw GenException("The repository was closed while a result was being read.");
}

int DistributionCursor::getColumnCount() const {
    return static_cast<int>(m_layout.columns.size());
}

KvbString DistributionCursor::getColumnName(int column) const {
    return isColumnValid(column) ? KvbString(m_layout.columns[static_cast<std::size_t>(column)].name) : KvbString();
}

KvbDatavar DistributionCursor::cell(int column) const {
    const Role shown = role(column);
    return shown == Role::Value ? KvbDatavar(std::string(m_reader.block().valueAt(m_row))) : KvbDatavar(number(shown));
}

bool DistributionCursor::isColumnNull(int column) const {
    const Role shown = role(column);
    return shown == Role::None || isNullValue(shown);
}

KvbString DistributionCursor::getWarning() const {
    return m_filter ? m_filter->warning() : KvbString();
}

DistributionCursor::Role DistributionCursor::role(int column) const {
    if (!m_isOnRow || !isColumnValid(column))
        return Role::None;
    constexpr Role kRoles[] = {Role::Rank, Role::Value, Role::Count};
    return kRoles[m_hasRank ? column : column + 1];
}

bool DistributionCursor::isNullValue(Role shown) const {
    return shown == Role::Value && m_reader.block().nullRow() == m_row;
}

std::int64_t DistributionCursor::number(Role shown) const {
    return shown == Role::Rank ? m_reader.firstRow() + static_cast<std::int64_t>(m_row) + 1
                               : static_cast<std::int64_t>(m_reader.block().countAt(m_row));
}

} // namespace tavix
