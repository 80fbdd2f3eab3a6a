#include "profiling/JobRunner.h"

#include "profiling/JobChecks.h"
#include "profiling/RunEngine.h"
#include "profiling/RunReporter.h"
#include "profiling/TablePrograms.h"
#include "repository/RunWriter.h"
#include "repository/Schema.h"
#include "source/TextFileReader.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <thread>
#include <utility>

namespace tavix::profiling {

namespace {

using source::DamagedRow;
using source::TextFileReader;

std::string damageText(const DamagedRow& row, std::size_t columns) {
    const auto cells =
        fmt::format("Line {}: {} {} instead of {}", row.line, row.cells, row.cells == 1 ? "cell" : "cells", columns);
    switch (row.damage) {
    case source::Damage::TooFewCells:
        return cells + "; the missing ones are null.";
    case source::Damage::TooManyCells:
        return cells + "; the extra ones are cut.";
    case source::Damage::BadBytes:
        return fmt::format("Line {}: bytes that are no UTF-8; each became U+FFFD.", row.line);
    case source::Damage::OpenQuote:
        return fmt::format("Line {}: a quote that is never closed takes the rest of the file.", row.line);
    }
    return {};
}

Result<std::unique_ptr<TextFileReader>> openTable(const TableDescription& table) {
    return TextFileReader::open(table.path, {table.delimiter, table.hasHeader});
}

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
    repository::TableFacts facts;
    TableOutcome outcome;
    std::vector<FieldFigures> fields;
};

/// About the memory that a field's facts take, what is packed not among it.
std::size_t sizeOf(const repository::FieldFacts& facts) {
    std::size_t size = sizeof(FieldFigures) + sizeof(PackedResult);
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
          m_started(m_clock->now()),
          m_reporter(options.watcher, job.tables.size()),
          m_engine(engineSettings(options, repositoryPath), [this] { return m_reporter.report(); }) {}

    Result<RunOutcome> execute() {
        Status status = steps();
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
        if (auto connection = repository::openRepository(m_repositoryPath, sql::OpenMode::Create); !connection)
            return connection.error();
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
        if (Status status = goOn(); !status)
            return status;
        return m_writer->commit(m_clock->now());
    }

    Status goOn() { return m_reporter.report(true) ? Status{} : Status{StopSignal::stopped()}; }

    /// Finds what is wrong before anything is written: the description itself, files, names of fields.
    Status check() {
        if (Status status = checkJob(m_job); !status)
            return status;
        for (const TableDescription& table : m_job.tables) {
            if (table.isFiltered())
                continue;
            auto reader = openTable(table);
            if (!reader)
                return Error{fmt::format("Table \"{}\": {}", table.name, reader.error().text)};
            m_reporter.state.bytesTotal += (*reader)->total();
            if (Status status = checkFieldsOver(m_job, table, (*reader)->columnNames()); !status)
                return status;
        }
        return {};
    }

    /// A table of the job and the filtered ones over it, in one pass over its source.
    Status profile(const TableDescription& base) {
        auto opened = openTable(base);
        if (!opened)
            return Error{fmt::format("Table \"{}\": {}", base.name, opened.error().text)};
        TextFileReader& reader = **opened;
        const auto names = reader.columnNames();
        const auto columns = std::make_shared<const std::vector<std::string>>(names.begin(), names.end());
        TablePasses passes;
        for (const TableDescription* table : tablesOver(m_job, base)) {
            auto programs = compileTable(*table, *columns);
            if (!programs)
                return programs.error();
            passes.push_back(std::make_unique<TablePass>(*table, *columns, std::move(programs).value()));
        }
        if (Status status = read(base, reader, passes); !status)
            return status;
        const std::int64_t rowsOfSource = passes.front()->rows();
        for (auto& pass : passes)
            if (Status status = figure(std::move(pass), columns, base, reader, rowsOfSource); !status)
                return status;
        m_bytesBefore += reader.position();
        return {};
    }

    Status read(const TableDescription& base, TextFileReader& reader, const TablePasses& passes) {
        ProgressState& state = m_reporter.state;
        state.table = base.name;
        state.rows = 0;
        state.phase = ProgressState::Phase::Reading;
        if (Status status = goOn(); !status)
            return status;
        const Status status = m_engine.count(reader, passes, [&](std::size_t rows) {
            state.rows += static_cast<std::int64_t>(rows);
            state.bytesDone = m_bytesBefore + reader.position();
        });
        if (!status)
            return Error{fmt::format("Table \"{}\": {}", base.name, status.error().text)};
        return {};
    }

    Status figure(std::unique_ptr<TablePass> pass, std::shared_ptr<const std::vector<std::string>> columns,
                  const TableDescription& base, const TextFileReader& reader, std::int64_t rowsOfSource) {
        m_reporter.state.phase = ProgressState::Phase::Counting;
        auto fields = m_engine.figures(*pass);
        if (!fields)
            return Error{fmt::format("Table \"{}\": {}", pass->description().name, fields.error().text)};
        FinishedTable table;
        table.fields = std::move(*fields);
        const TableDescription& description = pass->description();
        table.outcome.name = description.name;
        table.outcome.rows = pass->rows();
        table.outcome.fields = pass->columns().size();
        if (!description.isFiltered()) {
            table.outcome.damagedRows = reader.damagedRowCount();
            table.outcome.damage.assign(reader.damagedRows().begin(), reader.damagedRows().end());
        }
        table.facts = factsOf(description, base, reader, table.outcome, rowsOfSource);
        for (std::size_t c = 0; c < table.fields.size(); ++c) {
            pass->keepMetrics(c, table.fields[c].facts.metrics);
            m_factsSize += sizeOf(table.fields[c].facts);
        }
        table.columns = std::move(columns);
        table.pass = std::move(pass);
        m_finished.push_back(std::move(table));
        return {};
    }

    /// Begins the transaction, unless it was begun, and stores what waits.
    Status storeFinished() {
        m_reporter.state.phase = ProgressState::Phase::Storing;
        if (!m_writer) {
            auto writer = repository::RunWriter::begin(m_repositoryPath,
                                                       {m_job.name, m_job.description, m_description, m_started});
            if (!writer)
                return writer.error();
            m_writer = std::move(*writer);
        }
        for (FinishedTable& table : m_finished) {
            m_reporter.state.table = table.outcome.name;
            if (Status status = store(table); !status)
                return status;
        }
        m_finished.clear();
        m_factsSize = 0;
        return {};
    }

    Status store(FinishedTable& table) {
        const auto id = m_writer->addTable(table.facts);
        if (!id)
            return id.error();
        for (FieldFigures& field : table.fields) {
            field.packed->mayGoOn = [this] { return m_reporter.report(); };
            if (Status status = m_writer->addField(*id, field.facts); !status)
                return status;
            field = {};
        }
        if (Status status = table.pass->storeRules(*m_writer, *id); !status)
            return status;
        if (Status status = logDamage(*id, table.columns->size(), table.outcome); !status)
            return status;
        m_outcome.tables.push_back(std::move(table.outcome));
        return {};
    }

    Status logDamage(int tableId, std::size_t columns, const TableOutcome& result) {
        for (const DamagedRow& row : result.damage)
            if (Status status = m_writer->addLog(tableId, repository::LogLevel::Warning, damageText(row, columns));
                !status)
                return status;
        if (result.damagedRows == 0)
            return {};
        const bool isListCut = result.damagedRows > static_cast<std::int64_t>(result.damage.size());
        return m_writer->addLog(tableId, repository::LogLevel::Warning,
                                fmt::format("Damaged rows: {} of {}{}.", result.damagedRows, result.rows,
                                            isListCut ? "; the first ones are listed" : ""));
    }

    [[nodiscard]] repository::TableFacts factsOf(const TableDescription& table, const TableDescription& base,
                                                 const TextFileReader& reader, const TableOutcome& result,
                                                 std::int64_t rowsOfSource) const {
        repository::TableFacts facts;
        facts.dataSource = m_job.dataSource;
        facts.name = table.name;
        facts.isTextFile = true;
        facts.textFile.path = base.path;
        facts.textFile.delimiter = reader.delimiter();
        facts.textFile.hasHeader = base.hasHeader;
        facts.textFile.byteOrderMark = reader.hasByteOrderMark();
        facts.textFile.size = reader.total();
        facts.textFile.modified = reader.modified();
        if (table.isFiltered()) {
            facts.name = table.basedOn;
            facts.objectName = table.name;
            facts.kind = repository::TableKind::Filter;
            facts.filter = table.where.text;
        }
        facts.totalRecords = rowsOfSource;
        facts.processedRecords = result.rows;
        facts.damagedRecords = result.damagedRows;
        return facts;
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
    UtcTime m_started;
    RunReporter m_reporter;
    RunEngine m_engine;
    std::vector<FinishedTable> m_finished;
    std::size_t m_factsSize = 0; ///< of m_finished
    std::unique_ptr<repository::RunWriter> m_writer;
    std::int64_t m_bytesBefore = 0; ///< of the tables that are done
    RunOutcome m_outcome;
};

} // namespace

Status checkFields(const JobDescription& job) {
    for (const TableDescription& table : job.tables) {
        if (table.isFiltered())
            continue;
        if (const auto reader = openTable(table); reader)
            if (Status status = checkFieldsOver(job, table, (*reader)->columnNames()); !status)
                return status;
    }
    return {};
}

Result<RunOutcome> runJob(const JobDescription& job, const std::string& repositoryPath, const RunOptions& options) {
    return Run(job, options, repositoryPath).execute();
}

} // namespace tavix::profiling
