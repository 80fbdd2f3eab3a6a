#include "profiling/JobRunner.h"

#include "job/AlertEntries.h"
#include "job/JobChecks.h"
#include "profiling/Databases.h"
#include "profiling/EngineCount.h"
#include "profiling/OpenedSource.h"
#include "profiling/RunEngine.h"
#include "profiling/RunReporter.h"
#include "profiling/RunSettings.h"
#include "profiling/RunStore.h"
#include "profiling/SourceChecks.h"
#include "profiling/TablePrograms.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "source/OdbcReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <utility>

namespace tavix::profiling {

namespace {

bool areInMemory(const TablePasses& passes) {
    return std::all_of(passes.begin(), passes.end(), [](const auto& pass) {
        for (std::size_t c = 0; c < pass->columns().size(); ++c)
            if (pass->values(c).isSpilled())
                return false;
        return true;
    });
}

/// One run: reads every table and computes its metrics, and stores everything in one transaction at the end, or while
/// the metrics of the last table are computed. A step that the watcher cancels fails with StopSignal::stopped(), which
/// execute() turns into an outcome.
class Run {
  public:
    Run(const job::JobDescription& job, const std::vector<EmptyFile>& leftOut, const RunOptions& options,
        const std::string& repositoryPath)
        : m_job(job),
          m_leftOut(leftOut),
          m_clock(options.clock ? options.clock : &m_systemClock),
          m_started(m_clock->now()),
          m_offsetIndexFrom(options.offsetIndexFrom),
          m_databases(job, options.askCredentials),
          m_reporter(options.watcher, job.tables.size()),
          m_engine(engineSettings(options, repositoryPath, m_started),
                   [this] { return m_reporter.report() && !m_store.failure(); }),
          m_store(repositoryPath,
                  {.job = job.name,
                   .jobDescription = job.description,
                   .description = options.description,
                   .started = m_started,
                   .memory = m_engine.plan().storing(),
                   .isExamined = true,
                   .hasTypedExpressions = true},
                  m_reporter, m_engine.stop()) {}

    Result<RunOutcome> execute() {
        Status status = steps();
        if (const auto failure = m_store.failure())
            status = *failure;
        if (!status && !m_reporter.isCancelled())
            return status.error();
        return outcome();
    }

  private:
    Status steps() {
        if (Status status = check(); !status)
            return status;
        if (Status status = goOn(); !status)
            return status;
        m_store.open();
        for (std::size_t i = 0; i < m_job.tables.size(); ++i) {
            m_reporter.state.tableIndex = i;
            if (m_job.tables[i].isFiltered())
                continue; // read together with its base table
            if (Status status = profile(m_job.tables[i]); !status)
                return status;
            if (m_store.waitingSize() > m_engine.plan().facts())
                if (Status status = m_store.storeWaiting(m_outcome.tables); !status)
                    return status;
        }
        if (Status status = m_store.storeWaiting(m_outcome.tables); !status)
            return status;
        if (Status status = m_store.storeDifferences(); !status)
            return status;
        repository::RunWriter& writer = m_store.writer();
        for (const EmptyFile& file : m_leftOut)
            if (Status status = writer.addLog(0, repository::LogLevel::Warning, emptyFileText(file) + "."); !status)
                return status;
        for (const auto& collection : m_job.collections)
            if (Status status = writer.addCollection(collection); !status)
                return status;
        if (Status status = writer.setAlerts(job::alertsOf(m_job)); !status)
            return status;
        if (Status status = goOn(); !status)
            return status;
        if (Status status = writer.commit(m_clock->now()); !status)
            return status;
        m_outcome.jobId = writer.jobId();
        m_outcome.runId = writer.runId();
        return {};
    }

    /// Whether this is the last table to be read.
    bool isLast(const job::TableDescription& base) const {
        return std::all_of(m_job.tables.begin() + (&base - m_job.tables.data()) + 1, m_job.tables.end(),
                           [](const job::TableDescription& table) { return table.isFiltered(); });
    }

    Status goOn() { return m_reporter.report(true) ? Status{} : Status{StopSignal::stopped()}; }

    /// Checks the description, files, databases and field names before anything is written.
    Status check() {
        if (Status status = job::checkJob(m_job); !status)
            return status;
        for (const job::TableDescription& table : m_job.tables) {
            if (table.isFiltered())
                continue;
            if (Status status = table.isDatabase() ? checkDatabase(table) : checkFiles(table); !status)
                return status;
        }
        return {};
    }

    Status checkFiles(const job::TableDescription& table) {
        auto opened = openCheckedFiles(m_job, table, keepGoing());
        if (!opened)
            return opened.error();
        m_reporter.state.bytesTotal += opened->reader->total();
        // A file of unknown size, such as a pipe, cannot be opened twice.
        if (opened->reader->total() == 0)
            m_opened.emplace(&table, std::move(*opened));
        return {};
    }

    Status checkDatabase(const job::TableDescription& table) {
        const auto opened = openCheckedDatabase(m_job, table, m_databases);
        return opened ? Status{} : Status{opened.error()};
    }

    source::KeepGoing keepGoing() {
        return [this] { return m_reporter.report(); };
    }

    using SharedColumns = std::shared_ptr<const std::vector<std::string>>;

    /// Profiles a table and the filtered tables over it in one pass over its source.
    Status profile(const job::TableDescription& base) {
        m_reporter.state.table = base.name;
        m_reporter.state.rows = 0;
        m_reporter.state.phase = ProgressState::Phase::Reading;
        if (Status status = goOn(); !status)
            return status;
        return base.isDatabase() ? profileDatabase(base) : profileFiles(base);
    }

    Result<TablePasses> passesOver(const job::TableDescription& base, const SharedColumns& columns) {
        TablePasses passes;
        for (const job::TableDescription* table : tablesOver(m_job, base)) {
            auto programs = compileTable(*table, *columns, m_started);
            if (!programs)
                return programs.error();
            passes.push_back(std::make_unique<TablePass>(*table, *columns, std::move(programs).value()));
        }
        return passes;
    }

    Status profileFiles(const job::TableDescription& base) {
        const auto kept = m_opened.find(&base);
        auto opened =
            kept != m_opened.end() ? Result<OpenedFiles>(std::move(kept->second)) : openTable(base, keepGoing());
        if (!opened)
            return failureIn(base, opened.error());
        source::RowReader& reader = *opened->reader;
        const auto names = reader.columnNames();
        const auto columns = std::make_shared<const std::vector<std::string>>(names.begin(), names.end());
        auto passes = passesOver(base, columns);
        if (!passes)
            return passes.error();
        if (reader.total() >= m_offsetIndexFrom)
            for (auto& pass : *passes)
                pass->keepOffsetIndex();
        if (Status status = read(reader, *passes); !status)
            return failureIn(base, status.error());
        const std::int64_t rowsOfBase = passes->front()->rows();
        const bool storesAlong = isLast(base) && areInMemory(*passes);
        for (auto& pass : *passes) {
            FinishedTable table;
            table.report = reportOfFiles(m_job, pass->description(), base, *opened, pass->rows(), rowsOfBase);
            if (auto offsets = pass->takeOffsets(); !offsets.empty())
                table.offsetIndex = {opened->files->current().stamp(), valueSeeds(), std::move(offsets)};
            table.columns = columns;
            table.pass = std::move(pass);
            if (Status status = figure(std::move(table), {}, storesAlong); !status)
                return status;
        }
        m_bytesBefore += reader.position();
        return {};
    }

    /// All statements see one state of the database.
    Status profileDatabase(const job::TableDescription& base) {
        auto opened = m_databases.open(base);
        if (!opened)
            return failureIn(base, opened.error());
        const auto& names = opened->table.columnNames();
        const auto columns = std::make_shared<const std::vector<std::string>>(names.begin(), names.end());
        auto passes = passesOver(base, columns);
        if (!passes)
            return passes.error();
        TableOutcome damage;
        damage.fields = columns->size();
        opened->connection->beginSnapshot();
        const Status status = readDatabase(base, *opened, *passes, damage);
        opened->connection->endSnapshot();
        if (!status)
            return failureIn(base, status.error());
        const std::int64_t rowsOfBase = passes->front()->rows();
        const bool storesAlong = isLast(base) && areInMemory(*passes);
        for (auto& pass : *passes) {
            FinishedTable table;
            repository::TableFacts facts;
            addDatabaseFacts(facts, pass->description(), base, *opened);
            table.report = reportOfDatabase(pass->description(), std::move(facts), pass->rows(), rowsOfBase, damage);
            table.columns = columns;
            table.pass = std::move(pass);
            if (Status stored = figure(std::move(table), opened->table.columns(), storesAlong); !stored)
                return stored;
        }
        return {};
    }

    Status readDatabase(const job::TableDescription& base, const OpenedDatabaseTable& opened, const TablePasses& passes,
                        TableOutcome& damage) {
        if (!whyRowsAreRead(m_job, base, opened.table)) {
            const auto counted = countInEngine(opened, *passes.front(), m_engine, keepGoing(),
                                               [this](std::int64_t rows) { m_reporter.state.rows = rows; });
            if (!counted || *counted)
                return counted ? Status{} : Status{counted.error()};
        }
        auto reader = source::OdbcReader::open(*opened.connection, opened.table.rows(), opened.table.columns(),
                                               opened.table.columnNames(), keepGoing());
        if (!reader)
            return reader.error();
        Status status = read(**reader, passes);
        damage.damagedRows = (*reader)->damagedRowCount();
        damage.damage.assign((*reader)->damagedRows().begin(), (*reader)->damagedRows().end());
        return status;
    }

    Status read(source::RowReader& reader, const TablePasses& passes) {
        ProgressState& state = m_reporter.state;
        return m_engine.count(reader, passes, [&](std::size_t rows) {
            state.rows += static_cast<std::int64_t>(rows);
            state.bytesDone = m_bytesBefore + reader.position();
        });
    }

    /// `declared`: the columns as the database declares them, or none. `storesAlong`: store each field as soon as it is
    /// profiled.
    Status figure(FinishedTable table, std::span<const source::DeclaredColumn> declared, bool storesAlong) {
        m_reporter.state.phase = ProgressState::Phase::Counting;
        TablePass& pass = *table.pass;
        for (const ProgramRemark& remark : pass.remarks()) {
            table.report.outcome.remarks.push_back(remark.place + remark.text);
            table.report.log.push_back({repository::LogLevel::Warning, remark.text});
        }
        table.report.outcome.fields = table.columns->size();
        auto fields = storesAlong ? profilesStoredAlong(table) : figures(table, {});
        if (!fields)
            return fields.error();
        table.fields = std::move(*fields);
        for (std::size_t c = 0; c < table.fields.size(); ++c) {
            if (!declared.empty())
                addDeclaration(table.fields[c].facts, declared[c]);
            pass.keepMetrics(c, table.fields[c].facts.metrics);
        }
        m_store.add(std::move(table));
        return {};
    }

    Result<std::vector<FieldProfile>> figures(FinishedTable& table, const RunEngine::Along& along) {
        auto fields = m_engine.figures(*table.pass, along);
        if (!fields)
            return failureIn(table.pass->description(), fields.error());
        return fields;
    }

    Result<std::vector<FieldProfile>> profilesStoredAlong(FinishedTable& table) {
        auto queue = m_store.storeAlong(table);
        if (!queue)
            return queue.error();
        auto fields = figures(table, {[&] { return (*queue)->store(); },
                                      [&](FieldProfile& field) {
                                          (*queue)->put(*table.id, field);
                                          return (*queue)->store();
                                      }});
        if ((*queue)->failure())
            return *(*queue)->failure();
        return fields;
    }

    RunOutcome outcome() {
        m_outcome.cancelled = m_reporter.isCancelled();
        m_outcome.seconds = m_reporter.seconds();
        return std::move(m_outcome);
    }

    const job::JobDescription& m_job;
    const std::vector<EmptyFile>& m_leftOut;
    SystemClock m_systemClock;
    const Clock* m_clock;
    UtcTime m_started; ///< what now() means in expressions
    std::int64_t m_offsetIndexFrom;
    Databases m_databases;
    RunReporter m_reporter;
    RunEngine m_engine;
    RunStore m_store;
    std::map<const job::TableDescription*, OpenedFiles> m_opened; ///< sources that can be opened only once
    std::int64_t m_bytesBefore = 0;                               ///< of finished tables
    RunOutcome m_outcome;
};

} // namespace

Result<RunOutcome> runJob(const job::JobDescription& job, const std::string& repositoryPath,
                          const RunOptions& options) {
    JobWithoutEmptyFiles found = withoutEmptyFiles(job);
    auto outcome = Run(found.job, found.left, options, repositoryPath).execute();
    if (outcome)
        outcome->leftOut = std::move(found.left);
    return outcome;
}

} // namespace tavix::profiling
