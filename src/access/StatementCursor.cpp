#include "access/StatementCursor.h"

#include "base/GenException.h"
#include "base/KvbDatavar.h"
#include "base/LibraryDate.h"
#include "base/NumberText.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace tavix {

Result<std::unique_ptr<StatementCursor>> StatementCursor::open(std::shared_ptr<ViewerSession> session,
                                                               sql::Statement statement, const layout::Layout& layout) {
    sql::Step first = statement.step();
    if (first == sql::Step::Failed)
        return Error{session->connection->errorText()};
    return std::unique_ptr<StatementCursor>(
        new StatementCursor(std::move(session), std::move(statement), layout, first == sql::Step::Row));
}

StatementCursor::StatementCursor(std::shared_ptr<ViewerSession> session, sql::Statement statement,
                                 const layout::Layout& layout, bool hasRow)
    : m_session(std::move(session)),
      m_statement(std::move(statement)),
      m_layout(layout),
      m_position(hasRow ? Position::BeforeFirst : Position::AtEnd) {}

bool StatementCursor::next() {
    if (m_position == Position::AtEnd)
        return false;
    if (*m_session->closed)
        throw GenException("The repository was closed while a result was being read.");
    // Between rows, so that a sink may use the viewer.
    constexpr std::int64_t kRowsPerQuestion = 256;
    if (m_session->sink && m_rows % kRowsPerQuestion == 0 && !m_session->sink->progress("Reading", m_rows, 0)) {
        m_position = Position::AtEnd;
        throw GenException(kReadingStopped);
    }
    ++m_rows;
    if (m_position == Position::BeforeFirst) {
        m_position = Position::OnRow;
        return true;
    }
    switch (m_statement.step()) {
    case sql::Step::Row:
        return true;
    case sql::Step::Done:
        m_position = Position::AtEnd;
        return false;
    default:
        m_position = Position::AtEnd;
        throw GenException(m_session->connection->errorText());
    }
}

int StatementCursor::getColumnCount() const {
    return static_cast<int>(m_layout.columns.size());
}

KvbString StatementCursor::getColumnName(int column) const {
    return isColumnValid(column) ? KvbString(m_layout.columns[static_cast<std::size_t>(column)].name) : KvbString();
}

KvbString StatementCursor::getColumnValue(int column) const {
    if (!holds(column))
        return {};
    if (isDate(column))
        return formatReal(date(column));
    if (m_statement.isReal(column))
        return formatReal(m_statement.real(column));
    return m_statement.text(column);
}

int StatementCursor::getColumnInt(int column) const {
    if (!holds(column))
        return 0;
    if (m_statement.type(column) == sql::ValueType::Integer && !isDate(column)) {
        constexpr std::int64_t low = std::numeric_limits<int>::min();
        constexpr std::int64_t high = std::numeric_limits<int>::max();
        return static_cast<int>(std::clamp(m_statement.integer(column), low, high));
    }
    return KvbDatavar(getColumnValue(column)).toInt();
}

double StatementCursor::getColumnDouble(int column) const {
    if (!holds(column))
        return 0.0;
    if (isDate(column))
        return date(column);
    if (m_statement.type(column) == sql::ValueType::Text)
        return KvbDatavar(getColumnValue(column)).toDouble();
    return m_statement.real(column);
}

bool StatementCursor::isColumnNull(int column) const {
    return !holds(column);
}

bool StatementCursor::isColumnValid(int column) const {
    return column >= 0 && column < getColumnCount();
}

bool StatementCursor::holds(int column) const {
    return m_position == Position::OnRow && isColumnValid(column) && !m_statement.isNull(column);
}

bool StatementCursor::isDate(int column) const {
    return m_layout.columns[static_cast<std::size_t>(column)].form == layout::Form::Date;
}

double StatementCursor::date(int column) const {
    return toLibraryDate(UtcTime(std::chrono::milliseconds(m_statement.integer(column))));
}

} // namespace tavix
