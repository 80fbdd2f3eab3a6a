#include "profiling/JobRunner.h"

#include "profiling/AlertEntry.h"
#include "profiling/Databases.h"
#include "profiling/EngineCount.h"
#include "profiling/JobChecks.h"
#include "profiling/OpenedSource.h"
#include "profiling/RepositoryOpening.h"
#include "profiling/RunEngine.h"
#include "profiling/RunReporter.h"
#include "profiling/TablePrograms.h"
#include "repository/FilePlaces.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "source/OdbcReader.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <thread>
#include <utility>

namespace tavix::profiling {

namespace {

using Columns = std::span<const std::string>;

/// The table and those that are based on it, in the order of the job.
std::vector<const TableDescription*> tablesOver(const JobDescription& job, const TableDescription& base) {
    std::vector<const TableDescription*> tables{&base};
    for (const TableDescription& table : job.tables)
        if (table.basedOn == base.name && table.isFiltered())
            tables.push_back(&table);
    return tables;
}

Status checkFieldsOver(const JobDescription& job, const TableDescription& base, Columns columns) {
    for (const TableDescription* table : tablesOver(job, base)) {
        if (auto compiled = compileTable(*table, columns); !compiled)
            return compiled.error();
        if (Status status = checkCollectionFields(job, table->name, columns); !status)
            return status;
        if (Status status = checkAlertFields(*table, columns); !status)
            return status;
    }
    return {};
}

/// Bytes; half of what the machine has when nothing is stated.
std::size_t memoryOf(const RunOptions& options) {
    if (options.memory > 0)
        return options.memory;
    const auto pages = ::sysconf(_SC_PHYS_PAGES);
    const auto pageSize = ::sysconf(_SC_PAGE_SIZE);
    constexpr std::size_t kWhenUnknown = std::size_t{1} << 30;
    return pages > 0 && pageSize > 0 ? static_cast<std::size_t>(pages) / 2 * static_cast<std::size_t>(pageSize)
                                     : kWhenUnknown;
}

std::string spillFolderOf(const RunOptions& options, const std::string& repositoryPath) {
    if (!options.spillFolder.empty())
        return options.spillFolder;
    if (const char* const folder = std::getenv("TMPDIR"); folder && *folder)
        return folder;
    const std::filesystem::path parent = std::filesystem::path(repositoryPath).parent_path();
    return parent.empty() ? "." : parent.string();
}

RunEngine::Settings engineSettings(const RunOptions& options, const std::string& repositoryPath) {
    const unsigned threads = options.threads > 0 ? options.threads : std::max(1U, std::thread::hardware_concurrency());
    return {threads, memoryOf(options), spillFolderOf(options, repositoryPath)};
}

/// A table that was read and waits to be stored.
struct FinishedTable {
    std::shared_ptr<const std::vector<std::string>> columns; ///< borrowed by the pass
    std::unique_ptr<TablePass> pass;
    TableReport report;
    std::optional<repository::FilePlaces> places;
    std::vector<FieldFigures> fields;
};

/// About the memory that a field's figures take, what is packed not among it.
std::size_t sizeOf(const FieldFigures& field) {
    const repository::FieldFacts& facts = field.facts;
    std::size_t size = sizeof(FieldFigures) + sizeof(PackedResult);
    for (const repository::PlacePage& page : field.places)
        size += sizeof page + page.bytes.size();
    for (const auto& percentile : facts.percentiles)
        size += sizeof percentile + percentile.value.str().size();
    for (const auto& outlier : facts.outliers)
        size += sizeof outlier + outlier.value.str().size();
    return size;
}

/// The steps of one run: every table is read and its figures are computed, and only then, in one transaction, all is
/// stored. A step that the watcher stops fails with StopSignal::stopped(), which execute() turns into an outcome.
class Run {
  public:
    Run(const JobDescription& job, const RunOptions& options, const std::string& repositoryPath)
        : m_job(job),
          m_clock(options.clock ? options.clock : &m_systemClock),
          m_description(options.description),
          m_repositoryPath(repositoryPath),
          m_placesFrom(options.placesFrom),
          m_started(m_clock->now()),
          m_databases(job, options.askCredentials),
          m_reporter(options.watcher, job.tables.size()),
          m_engine(engineSettings(options, repositoryPath),
                   [this] { return m_reporter.report() && !(m_repository && m_repository->hasFailed()); }) {}

    Result<RunOutcome> execute() {
        Status status = steps();
        if (m_repository && m_repository->hasFailed())
            status = m_repository->finish();
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
        // Whether it can be written is better known before hours of reading than after them.
        m_repository.emplace(m_repositoryPath);
        for (std::size_t i = 0; i < m_job.tables.size(); ++i) {
            m_reporter.state.tableIndex = i;
            if (m_job.tables[i].isFiltered())
                continue; // made of the rows of another one, while those pass by
            if (Status status = profile(m_job.tables[i]); !status)
                return status;
            if (m_factsSize > m_engine.plan().facts())
                if (Status status = storeFinished(); !status)
                    return status;
        }
        if (Status status = storeFinished(); !status)
            return status;
        for (const auto& collection : m_job.collections)
            if (Status status = m_writer->addCollection(collection); !status)
                return status;
        if (Status status = m_writer->setAlerts(alertsOf(m_job)); !status)
            return status;
        if (Status status = goOn(); !status)
            return status;
        return m_writer->commit(m_clock->now());
    }

    Status goOn() { return m_reporter.report(true) ? Status{} : Status{StopSignal::stopped()}; }

    /// Finds what is wrong before anything is written: the description itself, files, databases, names of fields.
    Status check() {
        if (Status status = checkJob(m_job); !status)
            return status;
        for (const TableDescription& table : m_job.tables) {
            if (table.isFiltered())
                continue;
            if (Status status = table.isDatabase() ? checkDatabase(table) : checkFiles(table); !status)
                return status;
        }
        return {};
    }

    Status checkFiles(const TableDescription& table) {
        auto opened = openTable(table);
        if (!opened)
            return failureIn(table, opened.error());
        if (Status status = opened->files->checkColumns(); !status)
            return failureIn(table, status.error());
        m_reporter.state.bytesTotal += opened->reader->total();
        if (Status status = checkFieldsOver(m_job, table, opened->reader->columnNames()); !status)
            return status;
        // What does not know its size, as a pipe, cannot be opened twice.
        if (opened->reader->total() == 0)
            m_opened.emplace(&table, std::move(*opened));
        return {};
    }

    Status checkDatabase(const TableDescription& table) {
        const auto opened = m_databases.open(table);
        if (!opened)
            return failureIn(table, opened.error());
        return checkFieldsOver(m_job, table, opened->table.columnNames());
    }

    static Error failureIn(const TableDescription& table, const Error& error) {
        return {fmt::format("Table \"{}\": {}", table.name, error.text)};
    }

    using SharedColumns = std::shared_ptr<const std::vector<std::string>>;

    /// A table of the job and the filtered ones over it, in one pass over its source.
    Status profile(const TableDescription& base) {
        m_reporter.state.table = base.name;
        m_reporter.state.rows = 0;
        m_reporter.state.phase = ProgressState::Phase::Reading;
        if (Status status = goOn(); !status)
            return status;
        return base.isDatabase() ? profileDatabase(base) : profileFiles(base);
    }

    Result<TablePasses> passesOver(const TableDescription& base, const SharedColumns& columns) {
        TablePasses passes;
        for (const TableDescription* table : tablesOver(m_job, base)) {
            auto programs = compileTable(*table, *columns);
            if (!programs)
                return programs.error();
            passes.push_back(std::make_unique<TablePass>(*table, *columns, std::move(programs).value()));
        }
        return passes;
    }

    Status profileFiles(const TableDescription& base) {
        const auto kept = m_opened.find(&base);
        auto opened = kept != m_opened.end() ? Result<OpenedFiles>(std::move(kept->second)) : openTable(base);
        if (!opened)
            return failureIn(base, opened.error());
        source::RowReader& reader = *opened->reader;
        const auto names = reader.columnNames();
        const auto columns = std::make_shared<const std::vector<std::string>>(names.begin(), names.end());
        auto passes = passesOver(base, columns);
        if (!passes)
            return passes.error();
        if (reader.total() >= m_placesFrom)
            for (auto& pass : *passes)
                pass->keepPlaces();
        if (Status status = read(reader, *passes); !status)
            return failureIn(base, status.error());
        const std::int64_t rowsOfBase = passes->front()->rows();
        for (auto& pass : *passes) {
            TableReport report = reportOfFiles(m_job, pass->description(), base, *opened, pass->rows(), rowsOfBase);
            if (Status status = figure(std::move(pass), columns, std::move(report), {}); !status)
                return status;
            FinishedTable& table = m_finished.back();
            if (auto offsets = table.pass->takeOffsets(); !offsets.empty())
                table.places = {opened->files->current().stamp(), valueSeeds(), std::move(offsets)};
        }
        m_bytesBefore += reader.position();
        return {};
    }

    /// All that is asked of the database sees one state of its data.
    Status profileDatabase(const TableDescription& base) {
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
        for (auto& pass : *passes) {
            repository::TableFacts facts;
            addDatabaseFacts(facts, pass->description(), base, *opened);
            TableReport report =
                reportOfDatabase(pass->description(), std::move(facts), pass->rows(), rowsOfBase, damage);
            if (Status stored = figure(std::move(pass), columns, std::move(report), opened->table.columns()); !stored)
                return stored;
        }
        return {};
    }

    Status readDatabase(const TableDescription& base, const OpenedDatabaseTable& opened, const TablePasses& passes,
                        TableOutcome& damage) {
        const source::KeepGoing keepGoing = [this] { return m_reporter.report(); };
        if (!whyRowsAreRead(m_job, base, opened.table)) {
            const auto counted = countInEngine(opened, *passes.front(), m_engine, keepGoing,
                                               [this](std::int64_t rows) { m_reporter.state.rows = rows; });
            if (!counted || *counted)
                return counted ? Status{} : Status{counted.error()};
        }
        auto reader = source::OdbcReader::open(*opened.connection, opened.table.rows(), opened.table.columns(),
                                               opened.table.columnNames(), keepGoing);
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

    /// `declared`: the columns as a catalogue has them, or none.
    Status figure(std::unique_ptr<TablePass> pass, const SharedColumns& columns, TableReport report,
                  std::span<const source::DeclaredColumn> declared) {
        m_reporter.state.phase = ProgressState::Phase::Counting;
        for (const ProgramRemark& remark : pass->remarks()) {
            report.outcome.remarks.push_back(remark.place + remark.text);
            report.log.push_back({repository::LogLevel::Warning, remark.text});
        }
        auto fields = m_engine.figures(*pass);
        if (!fields)
            return failureIn(pass->description(), fields.error());
        FinishedTable table;
        table.fields = std::move(*fields);
        table.report = std::move(report);
        table.report.outcome.fields = columns->size();
        for (std::size_t c = 0; c < table.fields.size(); ++c) {
            if (!declared.empty())
                addDeclaration(table.fields[c].facts, declared[c]);
            pass->keepMetrics(c, table.fields[c].facts.metrics);
            m_factsSize += sizeOf(table.fields[c]);
        }
        table.columns = columns;
        table.pass = std::move(pass);
        m_finished.push_back(std::move(table));
        return {};
    }

    /// Begins the transaction, unless it was begun, and stores what waits.
    Status storeFinished() {
        m_reporter.state.phase = ProgressState::Phase::Storing;
        if (!m_writer) {
            if (Status status = m_repository->finish(); !status)
                return status;
            repository::RunDescription run{m_job.name, m_job.description, m_description, m_started};
            run.memory = m_engine.plan().storing();
            auto writer = repository::RunWriter::begin(m_repositoryPath, run);
            if (!writer)
                return writer.error();
            m_writer = std::move(*writer);
        }
        for (FinishedTable& table : m_finished) {
            m_reporter.state.table = table.report.outcome.name;
            if (Status status = store(table); !status)
                return status;
        }
        m_finished.clear();
        m_factsSize = 0;
        return {};
    }

    Status store(FinishedTable& table) {
        if (table.places)
            table.report.facts.places = &*table.places;
        const auto id = m_writer->addTable(table.report.facts);
        if (!id)
            return id.error();
        for (FieldFigures& field : table.fields) {
            field.packed->mayGoOn = [this] { return m_reporter.report(); };
            field.facts.places = field.places;
            if (Status status = m_writer->addField(*id, field.facts); !status)
                return status;
            field = {};
        }
        if (Status status = table.pass->storeRules(*m_writer, *id); !status)
            return status;
        for (const LogLine& line : table.report.log)
            if (Status status = m_writer->addLog(*id, line.level, line.text); !status)
                return status;
        m_outcome.tables.push_back(std::move(table.report.outcome));
        return {};
    }

    RunOutcome outcome() {
        m_outcome.cancelled = m_reporter.isCancelled();
        if (m_writer && !m_outcome.cancelled) {
            m_outcome.jobId = m_writer->jobId();
            m_outcome.runId = m_writer->runId();
        }
        m_outcome.seconds = m_reporter.seconds();
        return std::move(m_outcome);
    }

    const JobDescription& m_job;
    SystemClock m_systemClock;
    const Clock* m_clock;
    std::string m_description;
    const std::string& m_repositoryPath;
    std::int64_t m_placesFrom;
    UtcTime m_started;
    Databases m_databases;
    RunReporter m_reporter;
    RunEngine m_engine;
    std::vector<FinishedTable> m_finished;
    std::size_t m_factsSize = 0; ///< of m_finished
    /// Kept, for the last one that closes a repository has to tidy it, and that takes as long as a small table.
    std::optional<RepositoryOpening> m_repository;
    std::unique_ptr<repository::RunWriter> m_writer;
    std::map<const TableDescription*, OpenedFiles> m_opened; ///< what is opened once only
    std::int64_t m_bytesBefore = 0;                          ///< of the tables that are done
    RunOutcome m_outcome;
};

} // namespace

Status checkFields(const JobDescription& job) {
    for (const TableDescription& table : job.tables) {
        if (table.isFiltered() || table.isDatabase())
            continue;
        std::error_code failure;
        if (table.files.empty() && !std::filesystem::is_regular_file(table.path, failure))
            continue; // to look into a pipe would be to take from it
        if (const auto opened = openTable(table); opened)
            if (Status status = checkFieldsOver(job, table, opened->reader->columnNames()); !status)
                return status;
    }
    return {};
}

Result<RunOutcome> runJob(const JobDescription& job, const std::string& repositoryPath, const RunOptions& options) {
    return Run(job, options, repositoryPath).execute();
}

} // namespace tavix::profiling
