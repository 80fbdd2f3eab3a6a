#include "access/StatementCursor.h"

#include "base/GenException.h"
#include "base/LibraryDate.h"

#include <string>
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

KvbDatavar StatementCursor::cell(int column) const {
    if (isDate(column))
        return date(column);
    switch (m_statement.type(column)) {
    case sql::ValueType::Integer:
        return m_statement.integer(column);
    case sql::ValueType::Real:
        return m_statement.real(column);
    default:
        return std::string(m_statement.text(column));
    }
}

bool StatementCursor::isColumnNull(int column) const {
    return !holds(column);
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
