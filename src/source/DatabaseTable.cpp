#include "source/DatabaseTable.h"

#include "source/OdbcCatalogue.h"
#include "source/OdbcStatement.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace tavix::source {

namespace {

constexpr std::string_view kBlanks = " \t\r\n";

/// Removes the semicolon at the end of a query.
std::string withoutEnd(std::string query) {
    const auto last = query.find_last_not_of(kBlanks);
    query.resize(last == std::string::npos ? 0 : last + 1);
    if (query.ends_with(';'))
        query.pop_back();
    return query;
}

std::vector<std::string> distinctNames(std::span<const DeclaredColumn> columns) {
    std::vector<std::string> names;
    std::set<std::string> taken;
    for (const DeclaredColumn& column : columns) {
        const std::string plain = column.name.empty() ? fmt::format("Column{}", names.size() + 1) : column.name;
        std::string name = plain;
        for (int number = 2; !taken.insert(name).second; ++number)
            name = fmt::format("{} ({})", plain, number);
        names.push_back(std::move(name));
    }
    return names;
}

} // namespace

Result<DatabaseTable> DatabaseTable::resolve(const OdbcConnection& connection, const TableRequest& request) {
    DatabaseTable table(connection);
    table.m_address = request;
    if (Status status = request.isQuery() ? table.resolveQuery() : table.resolveTable(); !status)
        return status.error();
    table.m_names = distinctNames(table.m_columns);
    return table;
}

Status DatabaseTable::resolveTable() {
    auto entry = findTable(*m_connection, m_address);
    if (!entry)
        return entry.error();
    m_address = entry->address;
    m_columns = std::move(entry->columns);
    for (const DeclaredColumn& column : m_columns) {
        auto quoted = m_connection->quoted(column.name);
        if (!quoted)
            return quoted.error();
        m_quoted.push_back(std::move(*quoted));
    }
    const auto add = [&](const std::string& name, const std::string& separator) -> Status {
        auto quoted = m_connection->quoted(name);
        if (!quoted)
            return quoted.error();
        m_from += *quoted + separator;
        return {};
    };
    const DriverTraits& traits = m_connection->traits();
    if (traits.usesCatalog && !m_address.catalog.empty() && m_address.catalog != m_connection->currentCatalog())
        if (Status status = add(m_address.catalog, traits.catalogSeparator); !status)
            return status;
    if (traits.usesSchema && !m_address.schema.empty())
        if (Status status = add(m_address.schema, "."); !status)
            return status;
    return add(m_address.table, "");
}

Status DatabaseTable::resolveQuery() {
    m_address.query = withoutEnd(m_address.query);
    auto statement = OdbcStatement::create(*m_connection);
    if (!statement)
        return statement.error();
    if (Status status = statement->prepare(m_address.query); !status)
        return status;
    if (statement->parameterCount() > 0)
        return Error{fmt::format("Source \"{}\": the query has a \"?\" outside of quotes, which stands for a "
                                 "parameter.{}",
                                 m_connection->name(), m_connection->dialect().questionMarkHint)};
    auto columns = statement->resultColumns();
    if (!columns)
        return columns.error();
    // Some drivers report a mistake only when a statement is executed; this one only reads.
    if (columns->empty() && m_connection->dialect().isModern)
        if (Status status = statement->execute(
                fmt::format("WITH q AS (\n{}\n) SELECT * FROM q WHERE 1 = 0", m_address.query), {}, {});
            !status)
            return status;
    if (columns->empty())
        return Error{fmt::format("Source \"{}\": the query gives no rows; a SELECT does.", m_connection->name())};
    m_columns = std::move(*columns);
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        // The sizes that these drivers report for a type without one.
        DeclaredColumn& column = m_columns[c];
        const bool isGuess = column.kind == DeclaredColumn::Kind::LongText ||
                             column.kind == DeclaredColumn::Kind::Binary || column.length == 255 ||
                             (column.length == 28 && column.decimalPlaces == 6);
        if (isGuess && m_connection->dialect().writesText()) {
            column.length.reset();
            column.decimalPlaces.reset();
        }
        m_quoted.push_back(fmt::format("c{}", c + 1));
    }
    if (!m_connection->dialect().isModern)
        return {};
    // A query can only read if it is accepted as part of a statement.
    m_from = "q";
    auto check = OdbcStatement::create(*m_connection);
    if (!check)
        return check.error();
    if (Status status = check->prepare(rows().sql); !status)
        return status;
    return check->columnCount() == m_columns.size()
               ? Status{}
               : check->execute(rows().sql, {}, {}); // it fails and gives the reason
}

std::string DatabaseTable::intro() const {
    if (!m_address.isQuery())
        return {};
    std::string names;
    for (const std::string& name : m_quoted)
        names += (names.empty() ? "" : ", ") + name;
    // The line breaks end a comment at the end of the query.
    return fmt::format("WITH q({}) AS (\n{}\n) ", names, m_address.query);
}

std::string DatabaseTable::selectedTexts() const {
    std::string list;
    for (std::size_t c = 0; c < m_columns.size(); ++c)
        list += (c == 0 ? "" : ", ") + m_connection->dialect().textOf(m_quoted[c], m_columns[c]);
    return list;
}

SqlText DatabaseTable::rows() const {
    if (m_address.isQuery() && !m_connection->dialect().isModern)
        return {m_address.query};
    return {fmt::format("{}SELECT {} FROM {}", intro(), selectedTexts(), m_from)};
}

SqlText DatabaseTable::counts(std::size_t column) const {
    const SqlDialect& dialect = m_connection->dialect();
    const std::string text = dialect.textOf(m_quoted[column], m_columns[column]);
    if (!dialect.writesText())
        return {fmt::format("SELECT {0}, COUNT(*) FROM {1} GROUP BY {0}", text, m_from)};
    return {fmt::format("{}SELECT v, COUNT(*) FROM (SELECT {}{} AS v FROM {}) AS s GROUP BY v", intro(), text,
                        dialect.exactCollation, m_from)};
}

std::optional<std::string> DatabaseTable::whyNotCounted() const {
    const SqlDialect& dialect = m_connection->dialect();
    if (m_address.isQuery() && !dialect.isModern)
        return fmt::format("{} cannot be asked to count the rows of any query", m_connection->product());
    for (const DeclaredColumn& column : m_columns)
        if (auto reason = dialect.whyInexact(column))
            return reason;
    return std::nullopt;
}

SqlText DatabaseTable::matches(std::size_t column, const std::optional<std::string>& value, std::size_t limit) const {
    const SqlDialect& dialect = m_connection->dialect();
    if (m_address.isQuery() && !dialect.isModern)
        return rows();
    SqlText text = rows();
    const std::string& name = m_quoted[column];
    if (!value) {
        text.sql += fmt::format(" WHERE {} IS NULL", name);
    } else if (!dialect.canCompare(*value)) {
        return text;
    } else {
        text.sql += " WHERE ";
        if (const std::string first = dialect.indexCondition(name, m_columns[column], *value); !first.empty()) {
            text.sql += first + " AND ";
            text.parameters.push_back(value);
        }
        text.sql += fmt::format("{}{} = ?", dialect.textOf(name, m_columns[column]), dialect.exactCollation);
        text.parameters.push_back(value);
    }
    if (dialect.isModern && limit > 0)
        text.sql += fmt::format(" LIMIT {}", limit);
    return text;
}

} // namespace tavix::source
