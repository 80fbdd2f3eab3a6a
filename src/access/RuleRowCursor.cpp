#include "access/RuleRowCursor.h"

#include "access/Layouts.h"
#include "base/GenException.h"
#include "base/KvbDatavar.h"
#include "repository/RuleStore.h"

#include <array>
#include <utility>

namespace tavix {

namespace {

enum StoredRow { StoredRecord, StoredValues };
constexpr std::array kStoredColumns{
    layout::Column{StoredRecord, "Row", "l.record"},
    layout::Column{StoredValues, "Values", "l.row_values"},
};
constexpr layout::Layout kStored{"", kStoredColumns};

} // namespace

Result<std::unique_ptr<RuleRowCursor>> RuleRowCursor::open(std::shared_ptr<ViewerSession> session,
                                                           sql::Statement statement, std::vector<KvbString> fields) {
    auto rows = StatementCursor::open(std::move(session), std::move(statement), kStored);
    if (!rows)
        return rows.error();
    return std::unique_ptr<RuleRowCursor>(new RuleRowCursor(std::move(rows).value(), std::move(fields)));
}

RuleRowCursor::RuleRowCursor(std::unique_ptr<StatementCursor> rows, std::vector<KvbString> fields)
    : m_rows(std::move(rows)), m_fields(std::move(fields)) {}

bool RuleRowCursor::next() {
    m_values.clear();
    if (!m_rows->next())
        return false;
    auto values = repository::readTextList(m_rows->getColumnValue(StoredValues).view());
    if (!values)
        throw GenException(values.error().text);
    m_values = std::move(values).value();
    m_values.resize(m_fields.size());
    m_values.insert(m_values.begin(), m_rows->getColumnValue(StoredRecord));
    return true;
}

int RuleRowCursor::getColumnCount() const {
    return static_cast<int>(m_fields.size()) + 1;
}

KvbString RuleRowCursor::getColumnName(int column) const {
    if (!isColumnValid(column))
        return {};
    return column == layout::RuleRowNumber ? KvbString(kStoredColumns[StoredRecord].name)
                                           : m_fields[static_cast<std::size_t>(column) - 1];
}

KvbString RuleRowCursor::getColumnValue(int column) const {
    return isColumnNull(column) ? KvbString() : m_values[static_cast<std::size_t>(column)];
}

int RuleRowCursor::getColumnInt(int column) const {
    return KvbDatavar(getColumnValue(column)).toInt();
}

double RuleRowCursor::getColumnDouble(int column) const {
    return KvbDatavar(getColumnValue(column)).toDouble();
}

bool RuleRowCursor::isColumnNull(int column) const {
    return !isColumnValid(column) || m_values.empty() || m_values[static_cast<std::size_t>(column)].isNull();
}

bool RuleRowCursor::isColumnValid(int column) const {
    return column >= 0 && column < getColumnCount();
}

} // namespace tavix
