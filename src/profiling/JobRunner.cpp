#include "profiling/JobRunner.h"

#include "profiling/AlertEntry.h"
#include "profiling/FieldFigures.h"
#include "profiling/JobChecks.h"
#include "profiling/TablePass.h"
#include "profiling/TablePrograms.h"
#include "profiling/ValueCounter.h"
#include "repository/RunWriter.h"
#include "source/TextFileReader.h"

#include <fmt/format.h>

#include <chrono>
#include <filesystem>
#include <memory>
#include <utility>

namespace tavix::profiling {

namespace {

using Timer = std::chrono::steady_clock;
using source::DamagedRow;
using source::TextFileReader;

constexpr auto kReportInterval = std::chrono::milliseconds(100);

/// Tells the watcher what it should know, but not more often than it can show.
class Reporter {
  public:
    Reporter(ProgressWatcher* watcher, std::size_t tableCount) : m_watcher(watcher) { state.tableCount = tableCount; }

    /// False once the watcher has cancelled. `now`: do not wait for the interval.
    bool report(bool now = false) {
        const auto time = Timer::now();
        if (!m_watcher || m_isCancelled || (!now && time - m_last < kReportInterval))
            return !m_isCancelled;
        m_last = time;
        state.seconds = seconds();
        m_isCancelled = !m_watcher->progress(state);
        return !m_isCancelled;
    }
    [[nodiscard]] bool isCancelled() const { return m_isCancelled; }
    [[nodiscard]] double seconds() const { return std::chrono::duration<double>(Timer::now() - m_start).count(); }

    ProgressState state;

  private:
    ProgressWatcher* m_watcher;
    Timer::time_point m_start = Timer::now();
    Timer::time_point m_last{};
    bool m_isCancelled = false;
};

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
        if (Status status = checkAlertFields(*table, columns); !status)
            return status;
    }
    return {};
}

/// The steps of one run; each returns at once when the watcher has cancelled, which is no error.
class Run {
  public:
    Run(const JobDescription& job, const RunOptions& options)
        : m_job(job),
          m_clock(options.clock ? options.clock : &m_systemClock),
          m_description(options.description),
          m_reporter(options.watcher, job.tables.size()) {}

    Result<RunOutcome> execute(const std::string& repositoryPath) {
        if (Status status = check(); !status)
            return status.error();
        if (!m_reporter.report(true))
            return outcome();
        auto writer = repository::RunWriter::begin(repositoryPath,
                                                   {m_job.name, m_job.description, m_description, m_clock->now()});
        if (!writer)
            return writer.error();
        m_writer = std::move(*writer);
        for (std::size_t i = 0; i < m_job.tables.size() && !m_reporter.isCancelled(); ++i) {
            m_reporter.state.tableIndex = i;
            if (m_job.tables[i].isFiltered())
                continue; // made of the rows of another one, while those pass by
            if (Status status = profile(m_job.tables[i]); !status)
                return status.error();
        }
        if (m_reporter.isCancelled())
            return outcome();
        for (const auto& collection : m_job.collections)
            if (Status status = m_writer->addCollection(collection); !status)
                return status.error();
        if (Status status = m_writer->setAlerts(alertsOf(m_job)); !status)
            return status.error();
        if (!m_reporter.report(true))
            return outcome();
        if (Status status = m_writer->commit(m_clock->now()); !status)
            return status.error();
        return outcome();
    }

  private:
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
        std::vector<std::unique_ptr<TablePass>> passes;
        for (const TableDescription* table : tablesOver(m_job, base)) {
            auto programs = compileTable(*table, reader.columnNames());
            if (!programs)
                return programs.error();
            passes.push_back(std::make_unique<TablePass>(*table, reader.columnNames(), std::move(programs).value()));
        }
        if (Status status = read(base, reader, passes); !status || m_reporter.isCancelled())
            return status;
        for (const auto& pass : passes) {
            if (Status status = store(*pass, base, reader, passes.front()->rows()); !status || m_reporter.isCancelled())
                return status;
        }
        m_bytesBefore += reader.position();
        return {};
    }

    Status read(const TableDescription& base, TextFileReader& reader,
                std::span<const std::unique_ptr<TablePass>> passes) {
        ProgressState& state = m_reporter.state;
        state.table = base.name;
        state.rows = 0;
        state.phase = ProgressState::Phase::Reading;
        if (!m_reporter.report(true))
            return {};
        source::RowBlock block;
        for (;;) {
            const auto more = reader.read(block);
            if (!more)
                return Error{fmt::format("Table \"{}\": {}", base.name, more.error().text)};
            for (const auto& pass : passes)
                if (*more)
                    pass->take(block, state.rows + 1);
            state.rows += static_cast<std::int64_t>(block.rows);
            state.bytesDone = m_bytesBefore + reader.position();
            if (!m_reporter.report() || !*more)
                return {};
        }
    }

    Status store(TablePass& pass, const TableDescription& base, const TextFileReader& reader,
                 std::int64_t rowsOfSource) {
        const TableDescription& table = pass.description();
        TableOutcome result;
        result.name = table.name;
        result.rows = pass.rows();
        result.fields = pass.columns().size();
        if (!table.isFiltered()) {
            result.damagedRows = reader.damagedRowCount();
            result.damage.assign(reader.damagedRows().begin(), reader.damagedRows().end());
        }
        const auto id = m_writer->addTable(factsOf(table, base, reader, result, rowsOfSource));
        if (!id)
            return id.error();
        for (std::size_t c = 0; c < pass.columns().size(); ++c) {
            m_reporter.state.phase = ProgressState::Phase::Counting;
            if (!m_reporter.report())
                return {};
            ValueCounter& counter = pass.counter(c);
            counter.finish();
            const FieldFigures figures = computeFigures(counter, pass.columns()[c], static_cast<int>(c) + 1);
            m_reporter.state.phase = ProgressState::Phase::Storing;
            if (!m_reporter.report())
                return {};
            if (Status status = m_writer->addField(*id, figures.facts); !status)
                return status;
            pass.keepMetrics(c, figures.facts.metrics);
            counter = ValueCounter(); // wide tables: what is stored needs no memory
        }
        if (Status status = pass.storeRules(*m_writer, *id); !status)
            return status;
        if (Status status = logDamage(*id, reader, result); !status)
            return status;
        m_outcome.tables.push_back(std::move(result));
        return {};
    }

    Status logDamage(int tableId, const TextFileReader& reader, const TableOutcome& result) {
        for (const DamagedRow& row : result.damage)
            if (Status status = m_writer->addLog(tableId, repository::LogLevel::Warning,
                                                 damageText(row, reader.columnNames().size()));
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
    Reporter m_reporter;
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
    return Run(job, options).execute(repositoryPath);
}

} // namespace tavix::profiling
