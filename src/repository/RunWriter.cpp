#include "repository/RunWriter.h"

#include "repository/AlertStore.h"
#include "repository/BindValue.h"
#include "repository/Collections.h"
#include "repository/ExaminationStore.h"
#include "repository/Identities.h"
#include "repository/RuleStore.h"
#include "repository/RunChecksums.h"
#include "repository/Schema.h"
#include "repository/TableStore.h"

#include <fmt/format.h>

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tavix::repository {

namespace {

Error noTable(int tableId) {
    return Error{fmt::format("There is no table {} in this run.", tableId)};
}

} // namespace

RunWriter::RunWriter(const RunDescription& description) : m_description(description) {}
RunWriter::~RunWriter() = default;

Result<std::unique_ptr<RunWriter>> RunWriter::begin(const std::string& path, const RunDescription& description) {
    if (description.job.empty())
        return Error{"A run needs the name of its job."};
    auto connection = openRepository(path, sql::OpenMode::Create, description.mayWait);
    if (!connection)
        return connection.error();
    std::unique_ptr<RunWriter> writer(new RunWriter(description));
    writer->m_connection = std::move(*connection);
    if (description.memory > 0)
        if (auto set = writer->m_connection->setCacheSize(description.memory); !set)
            return set.error();
    auto transaction = sql::Transaction::begin(*writer->m_connection);
    if (!transaction)
        return transaction.error();
    writer->m_transaction.emplace(std::move(*transaction));
    auto run = writer->m_connection->nextId("run");
    if (!run)
        return run.error();
    writer->m_run = static_cast<int>(*run);
    return writer;
}

template <typename Step>
auto RunWriter::attempt(Step step) -> decltype(step()) {
    if (!m_transaction)
        return Error{"The run has ended."};
    auto outcome = step();
    if (!outcome)
        m_transaction.reset();
    return outcome;
}

Result<int> RunWriter::addTable(const TableFacts& facts) {
    return attempt([&]() -> Result<int> {
        auto source = dataSourceIdentity(*m_connection, facts.dataSource, facts.sourceKind);
        if (!source)
            return source.error();
        auto table = tableIdentity(*m_connection, *source, facts);
        if (!table)
            return table.error();
        if (m_tables.contains(*table))
            return Error{fmt::format("The table \"{}\" is in the run twice.", displayName(facts))};
        if (auto stored = storeFiles(*m_connection, m_run, *table, facts); !stored)
            return stored.error();
        const int position = static_cast<int>(m_tables.size()) + 1;
        Table& added = m_tables[*table];
        added.position = position;
        added.facts = facts;
        added.facts.offsetIndex = nullptr;
        return table;
    });
}

Status RunWriter::nameFields(int tableId, std::span<const std::string> names) {
    return attempt([&]() -> Status {
        if (!m_tables.contains(tableId))
            return noTable(tableId);
        for (const std::string& name : names)
            if (auto field = fieldIdentity(*m_connection, tableId, name); !field)
                return field.error();
        return {};
    });
}

Status RunWriter::addDistributions(int tableId, std::string_view name, PackedField& packed) {
    return attempt([&]() -> Status {
        if (!m_tables.contains(tableId))
            return noTable(tableId);
        auto field = fieldIdentity(*m_connection, tableId, name);
        if (!field)
            return field.error();
        return storePackedField(*m_connection, m_run, *field, packed);
    });
}

Result<std::map<std::string, EarlierField, std::less<>>> RunWriter::earlierFields(int tableId) {
    return attempt([&] { return readEarlierFields(*m_connection, m_description.job, m_run, tableId); });
}

Status RunWriter::addField(int tableId, const FieldFacts& facts) {
    return attempt([&]() -> Status {
        auto table = m_tables.find(tableId);
        if (table == m_tables.end())
            return noTable(tableId);
        auto field = fieldIdentity(*m_connection, tableId, facts.name);
        if (!field)
            return field.error();
        if (auto stored = storeField(*m_connection, m_run, tableId, *field, facts); !stored)
            return Error{fmt::format("The field \"{}\" of \"{}\" could not be stored. {}", facts.name,
                                     displayName(table->second.facts), stored.error().text)};
        ++table->second.fields;
        for (const FindingFacts& finding : facts.findings)
            if (auto stored = storeFinding(*m_connection, {m_run, tableId, *field}, finding); !stored)
                return stored;
        return storeFieldLists(*m_connection, m_run, *field, facts);
    });
}

Status RunWriter::addFinding(int tableId, std::string_view field, const FindingFacts& finding) {
    return attempt([&]() -> Status {
        if (!m_tables.contains(tableId))
            return noTable(tableId);
        if (field.empty())
            return storeFinding(*m_connection, {m_run, tableId, 0}, finding);
        auto id = fieldIdentity(*m_connection, tableId, field);
        return id ? storeFinding(*m_connection, {m_run, tableId, *id}, finding) : Status{id.error()};
    });
}

Status RunWriter::addCustomMetric(int tableId, const CustomMetricFacts& facts) {
    return attempt([&]() -> Status {
        auto table = m_tables.find(tableId);
        if (table == m_tables.end())
            return noTable(tableId);
        if (auto stored = storeCustomMetric(*m_connection, {m_run, tableId, ++table->second.metrics}, facts); !stored)
            return Error{fmt::format("The custom metric \"{}\" of \"{}\" could not be stored. {}", facts.name,
                                     displayName(table->second.facts), stored.error().text)};
        return {};
    });
}

Status RunWriter::addBusinessRule(int tableId, const BusinessRuleFacts& facts) {
    return attempt([&]() -> Status {
        auto table = m_tables.find(tableId);
        if (table == m_tables.end())
            return noTable(tableId);
        if (auto stored = storeBusinessRule(*m_connection, {m_run, tableId, ++table->second.rules}, facts); !stored)
            return Error{fmt::format("The rule \"{}\" of \"{}\" could not be stored. {}", facts.name,
                                     displayName(table->second.facts), stored.error().text)};
        return {};
    });
}

Status RunWriter::addLog(int tableId, LogLevel level, std::string_view text) {
    return attempt([&]() -> Status {
        if (tableId != 0 && !m_tables.contains(tableId))
            return noTable(tableId);
        auto insert = m_connection->prepare(
            "INSERT INTO execution_log(run, position, table_id, logged, level, text) VALUES(?1,?2,?3,?4,?5,?6)");
        if (!insert)
            return insert.error();
        insert->bind(1, m_run).bind(2, ++m_logLines);
        if (tableId == 0)
            insert->bindNull(3);
        else
            insert->bind(3, tableId);
        insert->bind(4, storedTime(clock().now())).bind(5, static_cast<int>(level)).bind(6, text);
        return insert->run();
    });
}

Result<int> RunWriter::findField(const FieldAddress& address) {
    int found = -1;
    for (const auto& [id, table] : m_tables) {
        if (displayName(table.facts) != address.table)
            continue;
        if (found != -1)
            return Error{fmt::format("The run has more than one table \"{}\".", address.table)};
        found = id;
    }
    return fieldOfRun(
        *m_connection, m_run, found, address.field,
        {fmt::format("There is no field \"{}\" in a table \"{}\" of the run.", address.field, address.table)});
}

Status RunWriter::addCollection(const CollectionFacts& facts) {
    return attempt([&]() -> Status {
        auto collection = collectionIdentity(*m_connection, facts.name, facts.description, clock().now());
        if (!collection)
            return collection.error();
        for (const FieldAddress& address : facts.fields) {
            auto field = findField(address);
            if (!field)
                return Error{fmt::format("Collection \"{}\": {}", facts.name, field.error().text)};
            auto holds = collectionHolds(*m_connection, *collection, *field);
            if (!holds)
                return holds.error();
            if (*holds)
                continue;
            if (auto added = addToCollection(*m_connection, *collection, *field); !added)
                return added;
        }
        return {};
    });
}

Result<AlertDefinition> RunWriter::locate(const AlertFacts& facts) {
    AlertDefinition alert{
        .subject = facts.subject, .metric = facts.metric, .rule = facts.rule, .description = facts.description};
    for (const auto& [id, table] : m_tables)
        if (displayName(table.facts) == facts.table)
            alert.table = id;
    if (facts.subject != AlertSubject::StandardMetric) {
        auto watched = findWatched(*m_connection, alert.table, facts.subject, facts.watched);
        if (!watched)
            return watched.error();
        alert.watched = *watched;
        return alert;
    }
    if (facts.field.empty())
        return alert;
    auto field = fieldOfRun(*m_connection, m_run, alert.table, facts.field,
                            {fmt::format("It watches the field \"{}\", which the table does not have.", facts.field)});
    if (!field)
        return field.error();
    alert.field = *field;
    return alert;
}

Status RunWriter::setAlerts(std::span<const AlertFacts> alerts) {
    return attempt([&]() -> Status {
        std::vector<AlertDefinition> located;
        for (const AlertFacts& facts : alerts) {
            auto alert = locate(facts);
            if (!alert)
                return Error{
                    fmt::format("An alert of \"{}\" could not be stored. {}", facts.table, alert.error().text)};
            located.push_back(std::move(*alert));
        }
        if (Status found = findJob(); !found)
            return found;
        return replaceAlerts(*m_connection, m_job, located, m_description.started);
    });
}

const Clock& RunWriter::clock() const {
    static const SystemClock kSystemClock{};
    return m_description.clock ? *m_description.clock : kSystemClock;
}

Status RunWriter::findJob() {
    auto id = jobIdentity(*m_connection, m_description.job, m_description.jobDescription, m_description.started);
    if (!id)
        return id.error();
    m_job = *id;
    return {};
}

Status RunWriter::storeTables() {
    for (const auto& [id, table] : m_tables)
        if (auto stored = storeTable(*m_connection, {m_run, id, table.position}, table.facts, table.fields); !stored)
            return stored;
    return {};
}

Status RunWriter::commit(UtcTime finished) {
    Status outcome = attempt([&]() -> Status {
        if (Status stored = storeTables(); !stored)
            return stored;
        if (Status found = findJob(); !found)
            return found;
        auto insert = m_connection->prepare("INSERT INTO run(id, job, started, finished, description, tables, records) "
                                            "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)");
        if (!insert)
            return insert.error();
        std::int64_t records = 0;
        for (const auto& [id, table] : m_tables)
            records += table.facts.processedRecords;
        insert->bind(1, m_run).bind(2, m_job).bind(3, storedTime(m_description.started)).bind(4, storedTime(finished));
        insert->bind(5, m_description.description).bind(6, static_cast<std::int64_t>(m_tables.size())).bind(7, records);
        if (auto done = insert->run(); !done)
            return done;
        if (m_description.isExamined)
            if (auto stored = storeExamination(*m_connection, m_run, m_description.hasTypedExpressions); !stored)
                return stored;
        if (auto stored = storeRunChecksums(*m_connection, m_run); !stored)
            return stored;
        return m_transaction->commit();
    });
    m_transaction.reset();
    return outcome;
}

} // namespace tavix::repository
