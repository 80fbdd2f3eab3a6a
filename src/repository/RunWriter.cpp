#include "repository/RunWriter.h"

#include "repository/AlertStore.h"
#include "repository/BindValue.h"
#include "repository/Collections.h"
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

struct RunWriter::Impl {
    struct Table {
        TableFacts facts; ///< without what it borrows
        int position = 0; ///< from 1
        int fields = 0;
        int metrics = 0;
        int rules = 0;
    };

    std::unique_ptr<sql::Connection> connection;
    std::optional<sql::Transaction> transaction; ///< empty once the run has ended, one way or the other
    const Clock* clock = nullptr;
    SystemClock systemClock;
    RunDescription description;
    int run = -1;
    int job = -1;
    int logLines = 0;
    std::map<int, Table> tables;

    /// Passes the outcome of a step on; a failed one ends the run.
    template <typename T>
    Result<T> conclude(Result<T> outcome) {
        if (!outcome)
            transaction.reset();
        return outcome;
    }

    Status requireOpen() const {
        if (!transaction)
            return Error{"The run has ended."};
        return {};
    }

    Result<int> addTable(const TableFacts& facts);
    Status nameFields(int tableId, std::span<const std::string> names);
    Status addDistributions(int tableId, std::string_view field, PackedField& packed);
    Status addField(int tableId, const FieldFacts& facts);
    Status addCustomMetric(int tableId, const CustomMetricFacts& facts);
    Status addBusinessRule(int tableId, const BusinessRuleFacts& facts);
    Status addLog(int tableId, LogLevel level, std::string_view text);
    Status addCollection(const CollectionFacts& facts);
    Result<int> findField(const FieldAddress& address);
    Status findJob();
    Status setAlerts(std::span<const AlertFacts> alerts);
    Result<StoredAlert> placeOf(const AlertFacts& facts);
    Status storeTables();
    Status finish(UtcTime finished);
};

Result<int> RunWriter::Impl::addTable(const TableFacts& facts) {
    auto source = dataSourceIdentity(*connection, facts.dataSource, facts.sourceKind);
    if (!source)
        return source.error();
    auto table = tableIdentity(*connection, *source, facts);
    if (!table)
        return table.error();
    if (tables.contains(*table))
        return Error{fmt::format("The table \"{}\" is in the run twice.", displayName(facts))};
    if (auto stored = storeFiles(*connection, run, *table, facts); !stored)
        return stored.error();
    const int position = static_cast<int>(tables.size()) + 1;
    Table& added = tables[*table];
    added.position = position;
    added.facts = facts;
    added.facts.offsetIndex = nullptr;
    return table;
}

Status RunWriter::Impl::nameFields(int tableId, std::span<const std::string> names) {
    if (!tables.contains(tableId))
        return noTable(tableId);
    for (const std::string& name : names)
        if (auto field = fieldIdentity(*connection, tableId, name); !field)
            return field.error();
    return {};
}

Status RunWriter::Impl::addDistributions(int tableId, std::string_view name, PackedField& packed) {
    if (!tables.contains(tableId))
        return noTable(tableId);
    auto field = fieldIdentity(*connection, tableId, name);
    if (!field)
        return field.error();
    return storePackedField(*connection, run, *field, packed);
}

Status RunWriter::Impl::addField(int tableId, const FieldFacts& facts) {
    auto table = tables.find(tableId);
    if (table == tables.end())
        return noTable(tableId);
    auto field = fieldIdentity(*connection, tableId, facts.name);
    if (!field)
        return field.error();
    if (auto stored = storeField(*connection, run, tableId, *field, facts); !stored)
        return Error{fmt::format("The field \"{}\" of \"{}\" could not be stored. {}", facts.name,
                                 displayName(table->second.facts), stored.error().text)};
    ++table->second.fields;
    return storeFieldLists(*connection, run, *field, facts);
}

Status RunWriter::Impl::addCustomMetric(int tableId, const CustomMetricFacts& facts) {
    auto table = tables.find(tableId);
    if (table == tables.end())
        return noTable(tableId);
    if (auto stored = storeCustomMetric(*connection, {run, tableId, ++table->second.metrics}, facts); !stored)
        return Error{fmt::format("The custom metric \"{}\" of \"{}\" could not be stored. {}", facts.name,
                                 displayName(table->second.facts), stored.error().text)};
    return {};
}

Status RunWriter::Impl::addBusinessRule(int tableId, const BusinessRuleFacts& facts) {
    auto table = tables.find(tableId);
    if (table == tables.end())
        return noTable(tableId);
    if (auto stored = storeBusinessRule(*connection, {run, tableId, ++table->second.rules}, facts); !stored)
        return Error{fmt::format("The rule \"{}\" of \"{}\" could not be stored. {}", facts.name,
                                 displayName(table->second.facts), stored.error().text)};
    return {};
}

Status RunWriter::Impl::addLog(int tableId, LogLevel level, std::string_view text) {
    if (tableId != 0 && !tables.contains(tableId))
        return Error{fmt::format("There is no table {} in this run.", tableId)};
    auto insert = connection->prepare(
        "INSERT INTO execution_log(run, position, table_id, logged, level, text) VALUES(?1,?2,?3,?4,?5,?6)");
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, ++logLines);
    if (tableId == 0)
        insert->bindNull(3);
    else
        insert->bind(3, tableId);
    insert->bind(4, storedTime(clock->now())).bind(5, static_cast<int>(level)).bind(6, text);
    return insert->run();
}

Result<int> RunWriter::Impl::findField(const FieldAddress& address) {
    int found = -1;
    for (const auto& [id, table] : tables) {
        if (displayName(table.facts) != address.table)
            continue;
        if (found != -1)
            return Error{fmt::format("The run has more than one table \"{}\".", address.table)};
        found = id;
    }
    auto select = connection->prepare("SELECT f.id FROM field f JOIN run_field rf ON rf.field = f.id AND rf.run = ?1 "
                                      "WHERE f.table_id = ?2 AND f.name = ?3");
    if (!select)
        return select.error();
    switch (select->bind(1, run).bind(2, found).bind(3, address.field).step()) {
    case sql::Step::Row:
        return static_cast<int>(select->integer(0));
    case sql::Step::Failed:
        return Error{connection->errorText()};
    default:
        return Error{
            fmt::format("There is no field \"{}\" in a table \"{}\" of the run.", address.field, address.table)};
    }
}

Status RunWriter::Impl::addCollection(const CollectionFacts& facts) {
    auto collection = collectionIdentity(*connection, facts.name, facts.description, clock->now());
    if (!collection)
        return collection.error();
    for (const FieldAddress& address : facts.fields) {
        auto field = findField(address);
        if (!field)
            return Error{fmt::format("Collection \"{}\": {}", facts.name, field.error().text)};
        auto holds = collectionHolds(*connection, *collection, *field);
        if (!holds)
            return holds.error();
        if (*holds)
            continue;
        if (auto added = addToCollection(*connection, *collection, *field); !added)
            return added;
    }
    return {};
}

Result<StoredAlert> RunWriter::Impl::placeOf(const AlertFacts& facts) {
    StoredAlert alert;
    alert.facts = &facts;
    for (const auto& [id, table] : tables)
        if (displayName(table.facts) == facts.table)
            alert.table = id;
    if (facts.subject != AlertSubject::StandardMetric)
        return alert;
    auto select = connection->prepare(
        "SELECT f.id, f.name FROM run_field rf JOIN field f ON f.id = rf.field WHERE rf.run = ?1 AND rf.table_id = ?2 "
        "AND ?3 IN ('', f.name) ORDER BY rf.position LIMIT 1");
    if (!select)
        return select.error();
    switch (select->bind(1, run).bind(2, alert.table).bind(3, facts.field).step()) {
    case sql::Step::Row:
        alert.field = static_cast<int>(select->integer(0));
        alert.fieldName = select->text(1);
        return alert;
    case sql::Step::Failed:
        return Error{connection->errorText()};
    default:
        return Error{
            fmt::format("An alert watches the field \"{}\", which \"{}\" does not have.", facts.field, facts.table)};
    }
}

Status RunWriter::Impl::setAlerts(std::span<const AlertFacts> alerts) {
    std::vector<StoredAlert> stored;
    for (const AlertFacts& facts : alerts) {
        auto place = placeOf(facts);
        if (!place)
            return place.error();
        stored.push_back(std::move(*place));
    }
    if (Status found = findJob(); !found)
        return found;
    return replaceAlerts(*connection, job, stored);
}

Status RunWriter::Impl::findJob() {
    auto id = jobIdentity(*connection, description.job, description.jobDescription, description.started);
    if (!id)
        return id.error();
    job = *id;
    return {};
}

Status RunWriter::Impl::storeTables() {
    for (const auto& [id, table] : tables)
        if (auto stored = storeTable(*connection, {run, id, table.position}, table.facts, table.fields); !stored)
            return stored;
    return {};
}

Status RunWriter::Impl::finish(UtcTime finished) {
    if (Status stored = storeTables(); !stored)
        return stored;
    if (Status found = findJob(); !found)
        return found;
    auto insert = connection->prepare("INSERT INTO run(id, job, started, finished, description, tables, records) "
                                      "VALUES(?1, ?2, ?3, ?4, ?5, ?6, ?7)");
    if (!insert)
        return insert.error();
    std::int64_t records = 0;
    for (const auto& [id, table] : tables)
        records += table.facts.processedRecords;
    insert->bind(1, run).bind(2, job).bind(3, storedTime(description.started)).bind(4, storedTime(finished));
    insert->bind(5, description.description).bind(6, static_cast<std::int64_t>(tables.size())).bind(7, records);
    if (auto done = insert->run(); !done)
        return done;
    if (auto stored = storeRunChecksums(*connection, run); !stored)
        return stored;
    return transaction->commit();
}

RunWriter::RunWriter(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
RunWriter::~RunWriter() = default;

Result<std::unique_ptr<RunWriter>> RunWriter::begin(const std::string& path, const RunDescription& description) {
    if (description.job.empty())
        return Error{"A run needs the name of its job."};
    auto connection = openRepository(path, sql::OpenMode::Create, description.mayWait);
    if (!connection)
        return connection.error();
    auto impl = std::make_unique<Impl>();
    impl->connection = std::move(*connection);
    impl->description = description;
    impl->clock = description.clock ? description.clock : &impl->systemClock;
    if (description.memory > 0)
        if (auto set = impl->connection->setCacheSize(description.memory); !set)
            return set.error();
    auto transaction = sql::Transaction::begin(*impl->connection);
    if (!transaction)
        return transaction.error();
    impl->transaction.emplace(std::move(*transaction));
    auto run = impl->connection->nextId("run");
    if (!run)
        return run.error();
    impl->run = static_cast<int>(*run);
    return std::unique_ptr<RunWriter>(new RunWriter(std::move(impl)));
}

int RunWriter::runId() const {
    return m_impl->run;
}

int RunWriter::jobId() const {
    return m_impl->job;
}

Result<int> RunWriter::addTable(const TableFacts& table) {
    if (auto open = m_impl->requireOpen(); !open)
        return open.error();
    return m_impl->conclude(m_impl->addTable(table));
}

Status RunWriter::nameFields(int tableId, std::span<const std::string> names) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->nameFields(tableId, names));
}

Status RunWriter::addDistributions(int tableId, std::string_view field, PackedField& packed) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->addDistributions(tableId, field, packed));
}

Status RunWriter::addField(int tableId, const FieldFacts& field) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->addField(tableId, field));
}

Status RunWriter::addCustomMetric(int tableId, const CustomMetricFacts& metric) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->addCustomMetric(tableId, metric));
}

Status RunWriter::addBusinessRule(int tableId, const BusinessRuleFacts& rule) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->addBusinessRule(tableId, rule));
}

Status RunWriter::addLog(int tableId, LogLevel level, std::string_view text) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->addLog(tableId, level, text));
}

Status RunWriter::addCollection(const CollectionFacts& collection) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->addCollection(collection));
}

Status RunWriter::setAlerts(std::span<const AlertFacts> alerts) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    return m_impl->conclude(m_impl->setAlerts(alerts));
}

Status RunWriter::commit(UtcTime finished) {
    if (auto open = m_impl->requireOpen(); !open)
        return open;
    Status outcome = m_impl->conclude(m_impl->finish(finished));
    m_impl->transaction.reset();
    return outcome;
}

} // namespace tavix::repository
