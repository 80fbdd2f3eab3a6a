#include "access/RuleRowCursor.h"

#include "access/Layouts.h"
#include "base/GenException.h"
#include "repository/RuleStore.h"

#include <array>
#include <utility>

namespace tavix {

namespace {

using namespace layout;

constexpr int kStoredValues = RuleRowFirstField;
constexpr std::array kStoredColumns{
    Column{RuleRowNumber, "Row", "l.record"},
    Column{RuleRowRuleId, "Rule Id", "l.rule"},
    Column{RuleRowPosition, "Position", "l.position"},
    Column{kStoredValues, "Values", "l.row_values"},
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
    auto values = repository::readTextList(m_rows->getColumnValue(kStoredValues).view());
    if (!values)
        throw GenException(values.error().text);
    m_values = std::move(values).value();
    m_values.resize(m_fields.size());
    for (int column = RuleRowFirstField - 1; column >= 0; --column)
        m_values.insert(m_values.begin(), m_rows->getColumnValue(column));
    return true;
}

int RuleRowCursor::getColumnCount() const {
    return static_cast<int>(m_fields.size()) + RuleRowFirstField;
}

KvbString RuleRowCursor::getColumnName(int column) const {
    if (!isColumnValid(column))
        return {};
    const auto at = static_cast<std::size_t>(column);
    return column < RuleRowFirstField ? KvbString(kStoredColumns[at].name) : m_fields[at - RuleRowFirstField];
}

KvbDatavar RuleRowCursor::cell(int column) const {
    return m_values[static_cast<std::size_t>(column)];
}

bool RuleRowCursor::isColumnNull(int column) const {
    return !isColumnValid(column) || m_values.empty() || m_values[static_cast<std::size_t>(column)].isNull();
}

} // namespace tavix
