#include "repository/RunWriter.h"

#include "repository/AlertStore.h"
#include "repository/BindValue.h"
#include "repository/Collections.h"
#include "repository/DistributionStore.h"
#include "repository/FilePlaces.h"
#include "repository/Identities.h"
#include "repository/RuleStore.h"
#include "repository/Schema.h"

#include <fmt/format.h>

#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace tavix::repository {

namespace {

std::int64_t milliseconds(UtcTime time) {
    return time.time_since_epoch().count();
}

std::int64_t sumOf(std::span<const ValueCount> rows) {
    std::uint64_t sum = 0;
    for (const ValueCount& row : rows)
        sum += row.count;
    return static_cast<std::int64_t>(sum);
}

Error noTable(int tableId) {
    return Error{fmt::format("There is no table {} in this run.", tableId)};
}

constexpr int kFirstMetricParameter = 6;
constexpr int kFirstTailParameter = kFirstMetricParameter + static_cast<int>(kMetricCount);

std::string insertFieldSql() {
    std::string columns = "INSERT INTO run_field(run, table_id, position, field, type_code";
    for (const MetricInfo& metric : metricCatalogue())
        columns += fmt::format(", {}", metric.column);
    columns += ", quantile_rule, value_rows, value_sum, pattern_rows, pattern_sum) VALUES(?1";
    for (int parameter = 2; parameter < kFirstTailParameter + 5; ++parameter)
        columns += fmt::format(",?{}", parameter);
    return columns + ")";
}

} // namespace

struct RunWriter::Impl {
    struct Table {
        std::string name;
        int fields = 0;
        int metrics = 0;
        int rules = 0;
    };

    std::unique_ptr<sql::Connection> connection;
    std::optional<sql::Transaction> transaction; ///< empty once the run has ended, one way or the other
    const Clock* clock = nullptr;
    SystemClock systemClock;
    int run = -1;
    int job = -1;
    int logLines = 0;
    std::int64_t records = 0;
    std::map<int, Table> tables;
    std::string insertField = insertFieldSql();

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

    Status start(const RunDescription& description);
    Result<int> addTable(const TableFacts& facts);
    Status storeTable(int table, const TableFacts& facts);
    Status storeFiles(int table, const TableFacts& facts);
    Status addField(int tableId, const FieldFacts& facts);
    Status storeField(int tableId, int field, const FieldFacts& facts);
    Status storePercentiles(int field, std::span<const Percentile> percentiles);
    Status storeOutliers(int field, std::span<const Outlier> outliers);
    Status addCustomMetric(int tableId, const CustomMetricFacts& facts);
    Status addBusinessRule(int tableId, const BusinessRuleFacts& facts);
    Status addLog(int tableId, LogLevel level, std::string_view text);
    Status addCollection(const CollectionFacts& facts);
    Result<int> findField(const FieldAddress& address);
    Status setAlerts(std::span<const AlertFacts> alerts);
    Result<StoredAlert> placeOf(const AlertFacts& facts);
    Status finish(UtcTime finished);
};

Status RunWriter::Impl::start(const RunDescription& description) {
    auto jobId = jobIdentity(*connection, description.job, description.jobDescription, description.started);
    if (!jobId)
        return jobId.error();
    auto insert = connection->prepare("INSERT INTO run(job, started, finished, description) VALUES(?1, ?2, ?2, ?3)");
    if (!insert)
        return insert.error();
    insert->bind(1, *jobId).bind(2, milliseconds(description.started)).bind(3, description.description);
    if (auto done = insert->run(); !done)
        return done;
    job = *jobId;
    run = static_cast<int>(connection->lastInsertId());
    return {};
}

Result<int> RunWriter::Impl::addTable(const TableFacts& facts) {
    auto source = dataSourceIdentity(*connection, facts.dataSource, facts.sourceKind);
    if (!source)
        return source.error();
    auto table = tableIdentity(*connection, *source, facts);
    if (!table)
        return table.error();
    if (tables.contains(*table))
        return Error{fmt::format("The table \"{}\" is in the run twice.", displayName(facts))};
    if (auto stored = storeTable(*table, facts); !stored)
        return stored.error();
    if (auto stored = storeFiles(*table, facts); !stored)
        return stored.error();
    if (facts.places)
        if (auto stored = storeFilePlaces(*connection, run, *table, *facts.places); !stored)
            return stored.error();
    tables[*table].name = displayName(facts);
    records += facts.processedRecords;
    return table;
}

Status RunWriter::Impl::storeTable(int table, const TableFacts& facts) {
    auto insert = connection->prepare(
        "INSERT INTO run_table(run, position, table_id, total_records, processed_records, damaged_records, query, "
        "filter, alternate_filter, file_path, file_delimiter, file_header, file_encoding, file_byte_order_mark, "
        "file_size, file_modified, connection) VALUES(?1,?2,?3,?4,?5,?6,?7,?8,?9,?10,?11,?12,?13,?14,?15,?16,?17)");
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, static_cast<std::int64_t>(tables.size() + 1)).bind(3, table);
    insert->bind(4, facts.totalRecords).bind(5, facts.processedRecords).bind(6, facts.damagedRecords);
    insert->bind(7, facts.query).bind(8, facts.filter).bind(9, facts.alternateFilter);
    if (facts.isTextFile) {
        const TextFileFacts& file = facts.textFile;
        insert->bind(10, file.path).bind(11, std::string_view(&file.delimiter, 1)).bind(12, file.hasHeader ? 1 : 0);
        insert->bind(13, file.encoding).bind(14, file.byteOrderMark ? 1 : 0).bind(15, file.size);
        insert->bind(16, milliseconds(file.modified));
    } else {
        for (int parameter = 10; parameter <= 16; ++parameter)
            insert->bindNull(parameter);
    }
    if (facts.connection)
        insert->bind(17, *facts.connection);
    else
        insert->bindNull(17);
    return insert->run();
}

Status RunWriter::Impl::storeFiles(int table, const TableFacts& facts) {
    if (!facts.isTextFile)
        return {};
    auto insert =
        connection->prepare("INSERT INTO run_file(run, table_id, position, path, quote) VALUES(?1,?2,?3,?4,?5)");
    if (!insert)
        return insert.error();
    const TextFileFacts& file = facts.textFile;
    const std::span<const std::string> paths = file.files.empty() ? std::span(&file.path, 1) : std::span(file.files);
    const std::string_view quote(&file.quote, file.quote == '\0' ? 0 : 1);
    insert->bind(1, run).bind(2, table).bind(5, quote);
    std::int64_t position = 0;
    for (const std::string& path : paths)
        if (auto done = insert->bind(3, ++position).bind(4, path).run(); !done)
            return done;
    return {};
}

Status RunWriter::Impl::addField(int tableId, const FieldFacts& facts) {
    auto table = tables.find(tableId);
    if (table == tables.end())
        return noTable(tableId);
    auto field = fieldIdentity(*connection, tableId, facts.name);
    if (!field)
        return field.error();
    if (auto stored = storeField(tableId, *field, facts); !stored)
        return Error{fmt::format("The field \"{}\" of \"{}\" could not be stored. {}", facts.name, table->second.name,
                                 stored.error().text)};
    ++table->second.fields;
    if (auto stored = storePercentiles(*field, facts.percentiles); !stored)
        return stored;
    if (auto stored = storeOutliers(*field, facts.outliers); !stored)
        return stored;
    if (auto stored = storeValuePlaces(*connection, run, *field, facts.places); !stored)
        return stored;
    const DistributionKey values{run, *field, DistributionKind::Values};
    const DistributionKey patterns{run, *field, DistributionKind::Patterns};
    if (facts.packed) {
        if (auto stored = storePacked(*connection, values, *facts.packed); !stored)
            return stored;
        if (auto stored = storePacked(*connection, patterns, *facts.packed); !stored)
            return stored;
        return storePackedHashes(*connection, run, *field, *facts.packed);
    }
    if (auto stored = storeDistribution(*connection, values, facts.values); !stored)
        return stored;
    if (auto stored = storeDistribution(*connection, patterns, facts.patterns); !stored)
        return stored;
    return storeValueHashes(*connection, run, *field, facts.values);
}

Status RunWriter::Impl::storeField(int tableId, int field, const FieldFacts& facts) {
    auto insert = connection->prepare(insertField);
    if (!insert)
        return insert.error();
    insert->bind(1, run).bind(2, tableId).bind(3, facts.ordinal).bind(4, field);
    insert->bind(5, std::string_view(&facts.typeCode, facts.typeCode ? 1 : 0));
    for (std::size_t metric = 0; metric < kMetricCount; ++metric)
        bindValue(*insert, kFirstMetricParameter + static_cast<int>(metric), facts.metrics[metric]);
    insert->bind(kFirstTailParameter, facts.quantileRule);
    const PackedField* const packed = facts.packed;
    const auto asInteger = [](auto number) { return static_cast<std::int64_t>(number); };
    insert->bind(kFirstTailParameter + 1, packed ? packed->valueRows() : asInteger(facts.values.size()));
    insert->bind(kFirstTailParameter + 2, packed ? asInteger(packed->valueSum()) : sumOf(facts.values));
    insert->bind(kFirstTailParameter + 3, packed ? packed->patternRows() : asInteger(facts.patterns.size()));
    insert->bind(kFirstTailParameter + 4, packed ? asInteger(packed->patternSum()) : sumOf(facts.patterns));
    return insert->run();
}

Status RunWriter::Impl::storePercentiles(int field, std::span<const Percentile> percentiles) {
    auto insert =
        connection->prepare("INSERT INTO percentile(run, field, position, interval, value) VALUES(?1,?2,?3,?4,?5)");
    if (!insert)
        return insert.error();
    int position = 0;
    for (const Percentile& percentile : percentiles) {
        insert->bind(1, run).bind(2, field).bind(3, position++).bind(4, percentile.interval);
        bindText(*insert, 5, percentile.value);
        if (auto done = insert->run(); !done)
            return done;
    }
    return {};
}

Status RunWriter::Impl::storeOutliers(int field, std::span<const Outlier> outliers) {
    auto insert = connection->prepare(
        "INSERT INTO outlier(run, field, side, position, value, count, fence) VALUES(?1,?2,?3,?4,?5,?6,?7)");
    if (!insert)
        return insert.error();
    for (const Outlier& outlier : outliers) {
        char side = static_cast<char>(outlier.side);
        insert->bind(1, run).bind(2, field).bind(3, std::string_view(&side, 1)).bind(4, outlier.position);
        bindText(*insert, 5, outlier.value);
        insert->bind(6, static_cast<std::int64_t>(outlier.count)).bind(7, static_cast<int>(outlier.fence));
        if (auto done = insert->run(); !done)
            return done;
    }
    return {};
}

Status RunWriter::Impl::addCustomMetric(int tableId, const CustomMetricFacts& facts) {
    auto table = tables.find(tableId);
    if (table == tables.end())
        return noTable(tableId);
    if (auto stored = storeCustomMetric(*connection, {run, tableId, ++table->second.metrics}, facts); !stored)
        return Error{fmt::format("The custom metric \"{}\" of \"{}\" could not be stored. {}", facts.name,
                                 table->second.name, stored.error().text)};
    return {};
}

Status RunWriter::Impl::addBusinessRule(int tableId, const BusinessRuleFacts& facts) {
    auto table = tables.find(tableId);
    if (table == tables.end())
        return noTable(tableId);
    if (auto stored = storeBusinessRule(*connection, {run, tableId, ++table->second.rules}, facts); !stored)
        return Error{fmt::format("The rule \"{}\" of \"{}\" could not be stored. {}", facts.name, table->second.name,
                                 stored.error().text)};
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
    insert->bind(4, milliseconds(clock->now())).bind(5, static_cast<int>(level)).bind(6, text);
    return insert->run();
}

Result<int> RunWriter::Impl::findField(const FieldAddress& address) {
    int found = -1;
    for (const auto& [id, table] : tables) {
        if (table.name != address.table)
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
        if (table.name == facts.table)
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
    return replaceAlerts(*connection, job, stored);
}

Status RunWriter::Impl::finish(UtcTime finished) {
    auto count = connection->prepare("UPDATE run_table SET fields = ?3 WHERE run = ?1 AND table_id = ?2");
    if (!count)
        return count.error();
    for (const auto& [id, table] : tables) {
        if (auto done = count->bind(1, run).bind(2, id).bind(3, table.fields).run(); !done)
            return done;
    }
    auto update = connection->prepare("UPDATE run SET finished = ?2, tables = ?3, records = ?4 WHERE id = ?1");
    if (!update)
        return update.error();
    update->bind(1, run).bind(2, milliseconds(finished)).bind(3, static_cast<std::int64_t>(tables.size()));
    if (auto done = update->bind(4, records).run(); !done)
        return done;
    return transaction->commit();
}

RunWriter::RunWriter(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
RunWriter::~RunWriter() = default;

Result<std::unique_ptr<RunWriter>> RunWriter::begin(const std::string& path, const RunDescription& description) {
    if (description.job.empty())
        return Error{"A run needs the name of its job."};
    auto connection = openRepository(path, sql::OpenMode::Create);
    if (!connection)
        return connection.error();
    auto impl = std::make_unique<Impl>();
    impl->connection = std::move(*connection);
    impl->clock = description.clock ? description.clock : &impl->systemClock;
    if (description.memory > 0)
        if (auto set = impl->connection->setCacheSize(description.memory); !set)
            return set.error();
    auto transaction = sql::Transaction::begin(*impl->connection);
    if (!transaction)
        return transaction.error();
    impl->transaction.emplace(std::move(*transaction));
    if (auto started = impl->start(description); !started)
        return started.error();
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
