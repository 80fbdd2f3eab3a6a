#include "profiling/JobRunner.h"

#include "profiling/FieldFigures.h"
#include "profiling/JobChecks.h"
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
            if (Status status = profile(m_job.tables[i]); !status)
                return status.error();
        }
        if (m_reporter.isCancelled())
            return outcome();
        for (const auto& collection : m_job.collections)
            if (Status status = m_writer->addCollection(collection); !status)
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
            auto reader = openTable(table);
            if (!reader)
                return Error{fmt::format("Table \"{}\": {}", table.name, reader.error().text)};
            m_reporter.state.bytesTotal += (*reader)->total();
            if (Status status = checkCollectionFields(m_job, table.name, (*reader)->columnNames()); !status)
                return status;
        }
        return {};
    }

    Status profile(const TableDescription& table) {
        auto opened = openTable(table);
        if (!opened)
            return Error{fmt::format("Table \"{}\": {}", table.name, opened.error().text)};
        TextFileReader& reader = **opened;
        std::vector<ValueCounter> counters(reader.columnNames().size());
        TableOutcome result;
        result.name = table.name;
        result.fields = counters.size();
        if (Status status = count(table, reader, counters, result.rows); !status || m_reporter.isCancelled())
            return status;
        result.damagedRows = reader.damagedRowCount();
        result.damage.assign(reader.damagedRows().begin(), reader.damagedRows().end());
        if (Status status = store(table, reader, counters, result); !status)
            return status;
        m_bytesBefore += reader.position();
        m_outcome.tables.push_back(std::move(result));
        return {};
    }

    Status count(const TableDescription& table, TextFileReader& reader, std::vector<ValueCounter>& counters,
                 std::int64_t& rows) {
        ProgressState& state = m_reporter.state;
        state.table = table.name;
        state.rows = 0;
        state.phase = ProgressState::Phase::Reading;
        if (!m_reporter.report(true))
            return {};
        source::RowBlock block;
        for (;;) {
            const auto more = reader.read(block);
            if (!more)
                return Error{fmt::format("Table \"{}\": {}", table.name, more.error().text)};
            // A column at a time, so that one hash table is in the cache.
            for (std::size_t c = 0; c < counters.size() && *more; ++c)
                counters[c].count(std::span(block.columns[c].data(), block.rows));
            rows += static_cast<std::int64_t>(block.rows);
            state.rows = rows;
            state.bytesDone = m_bytesBefore + reader.position();
            if (!m_reporter.report() || !*more)
                return {};
        }
    }

    Status store(const TableDescription& table, const TextFileReader& reader, std::vector<ValueCounter>& counters,
                 const TableOutcome& result) {
        const auto id = m_writer->addTable(factsOf(table, reader, result));
        if (!id)
            return id.error();
        for (std::size_t c = 0; c < counters.size(); ++c) {
            m_reporter.state.phase = ProgressState::Phase::Counting;
            if (!m_reporter.report())
                return {};
            counters[c].finish();
            const FieldFigures figures = computeFigures(counters[c], reader.columnNames()[c], static_cast<int>(c) + 1);
            m_reporter.state.phase = ProgressState::Phase::Storing;
            if (!m_reporter.report())
                return {};
            if (Status status = m_writer->addField(*id, figures.facts); !status)
                return status;
            counters[c] = ValueCounter(); // wide tables: what is stored needs no memory
        }
        return logDamage(*id, reader, result);
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

    [[nodiscard]] repository::TableFacts factsOf(const TableDescription& table, const TextFileReader& reader,
                                                 const TableOutcome& result) const {
        repository::TableFacts facts;
        facts.dataSource = m_job.dataSource;
        facts.name = table.name;
        facts.isTextFile = true;
        facts.textFile.path = table.path;
        facts.textFile.delimiter = reader.delimiter();
        facts.textFile.hasHeader = table.hasHeader;
        facts.textFile.byteOrderMark = reader.hasByteOrderMark();
        facts.textFile.size = reader.total();
        facts.textFile.modified = reader.modified();
        facts.totalRecords = result.rows;
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

Result<RunOutcome> runJob(const JobDescription& job, const std::string& repositoryPath, const RunOptions& options) {
    return Run(job, options).execute(repositoryPath);
}

} // namespace tavix::profiling
