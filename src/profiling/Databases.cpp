#include "profiling/Databases.h"

#include "source/ConnectionText.h"

#include <fmt/format.h>

#include <algorithm>

namespace tavix::profiling {

using repository::FieldFacts;
using repository::TableFacts;
using repository::TableKind;
using source::DatabaseTable;
using source::DeclaredColumn;

Result<OpenedDatabaseTable> Databases::open(const job::TableDescription& table) {
    const auto source = std::find_if(m_job.sources.begin(), m_job.sources.end(),
                                     [&](const job::SourceDescription& one) { return one.name == table.source; });
    if (source == m_job.sources.end())
        return Error{fmt::format("The job has no source \"{}\".", table.source)};
    auto& connection = m_connections[source->name];
    if (!connection) {
        const auto text = source::ConnectionText::parse(source->connection);
        if (!text)
            return text.error();
        auto opened = source::OdbcConnection::open(source->name, *text, m_ask);
        if (!opened)
            return opened.error();
        connection = std::move(*opened);
    }
    auto found = DatabaseTable::resolve(*connection, table.database);
    if (!found)
        return found.error();
    if (found->columns().empty())
        return Error{"it has no columns"};
    return OpenedDatabaseTable{connection.get(), std::move(*found)};
}

std::optional<std::string> whyRowsAreRead(const job::JobDescription& job, const job::TableDescription& table,
                                          const DatabaseTable& found) {
    if (table.isCountedByRows)
        return "the job says \"counted by: rows\"";
    for (const job::TableDescription& other : job.tables)
        if (other.isFiltered() && other.basedOn == table.name)
            return fmt::format("the filtered table \"{}\" needs its rows", other.name);
    if (!table.rules.empty())
        return "its rules look at every row";
    for (const job::CustomMetricDescription& metric : table.metrics)
        if (metric.figure != job::Figure::Metric)
            return fmt::format("the custom metric \"{}\" looks at every row", metric.name);
    return found.whyNotCounted();
}

void addDatabaseFacts(TableFacts& facts, const job::TableDescription& table, const job::TableDescription& base,
                      const OpenedDatabaseTable& opened) {
    const source::TableRequest& address = opened.table.address();
    facts.dataSource = base.source;
    facts.sourceKind = repository::SourceKind::Odbc;
    facts.isTextFile = false;
    facts.connection = opened.connection->publicText();
    facts.connectionUser = opened.connection->statedUser();
    facts.catalog = address.catalog;
    facts.schema = address.schema;
    facts.name = address.table;
    facts.query = address.query;
    facts.kind = address.isQuery() ? TableKind::Query : TableKind::Plain;
    if (table.isFiltered()) {
        facts.kind = TableKind::Filter;
        facts.filter = table.where.text;
    }
    facts.objectName = facts.kind == TableKind::Plain && table.name == address.table ? "" : table.name;
}

void addDeclaration(FieldFacts& facts, const DeclaredColumn& column) {
    const auto set = [&](MetricId metric, KvbDatavar value) { facts.metrics[index(metric)] = std::move(value); };
    const auto word = [](bool value) { return value ? "Yes" : "No"; };
    if (!column.typeName.empty())
        set(MetricId::DefinedType, column.typeName);
    if (column.length)
        set(MetricId::DefinedLength, *column.length);
    if (column.decimalPlaces)
        set(MetricId::Precision, *column.decimalPlaces);
    if (column.isNullable)
        set(MetricId::Nullable, word(*column.isNullable));
    if (column.isDeclaredByTable)
        set(MetricId::PrimaryKey, word(column.isKey));
}

Result<std::vector<TableExplanation>> explainJob(const job::JobDescription& job, source::AskCredentials ask) {
    std::vector<TableExplanation> explanations;
    Databases databases(job, std::move(ask));
    for (const job::TableDescription& table : job.tables) {
        TableExplanation explanation{table.name, table.isDatabase() ? table.source : job.dataSource, {}, {}};
        if (table.isFiltered())
            explanation.reason = fmt::format("made of the rows of \"{}\" in the same pass", table.basedOn);
        else if (!table.isDatabase())
            explanation.reason = "a text file is read";
        if (table.isDatabase()) {
            const auto opened = databases.open(table);
            if (!opened)
                return Error{fmt::format("Table \"{}\": {}", table.name, opened.error().text)};
            const DatabaseTable& found = opened->table;
            if (const auto reason = whyRowsAreRead(job, table, found)) {
                explanation.reason = *reason;
                explanation.statements.push_back(found.rows().sql);
            } else {
                for (std::size_t c = 0; c < found.columns().size(); ++c)
                    explanation.statements.push_back(found.counts(c).sql);
            }
        }
        explanations.push_back(std::move(explanation));
    }
    return explanations;
}

} // namespace tavix::profiling
