#include "profiling/OpenedSource.h"

#include "base/Encodings.h"
#include "profiling/TableFiles.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace tavix::profiling {

namespace {

using repository::LogLevel;

constexpr std::size_t kListedFiles = 1000;

std::string rowText(const source::DamagedRow& row, std::size_t columns) {
    const auto cells =
        fmt::format("Row {}: {} {} instead of {}", row.line, row.cells, row.cells == 1 ? "cell" : "cells", columns);
    switch (row.damage) {
    case source::Damage::TooFewCells:
        return cells + "; the missing ones are null.";
    case source::Damage::TooManyCells:
        return cells + "; the extra ones are cut.";
    case source::Damage::BadBytes:
        return fmt::format("Row {}: bytes that are not UTF-8; each became U+FFFD.", row.line);
    case source::Damage::OpenQuote:
        return fmt::format("Row {}: a quote that is never closed takes the rest.", row.line);
    }
    return {};
}

void countDamage(TableReport& report) {
    const TableOutcome& result = report.outcome;
    if (result.damagedRows == 0)
        return;
    const bool isListCut = result.damagedRows > static_cast<std::int64_t>(result.damage.size());
    report.log.push_back(
        {LogLevel::Warning, fmt::format("Damaged rows: {} of {}{}.", result.damagedRows, result.rowsOfSource,
                                        isListCut ? "; the first ones are listed" : "")});
}

/// A file that is not UTF-8 and has no stated encoding is read as windows-1252, which may be wrong.
void addGuessedEncoding(TableReport& report, const job::TableDescription& table, const source::FileSetReader& files) {
    if (table.encoding)
        return;
    std::size_t guessed = 0;
    std::string first;
    for (std::size_t i = 0; i < files.rowsOfFiles().size(); ++i)
        if (&files.encodingOf(i) == &encodingWindows1252() && guessed++ == 0)
            first = files.files()[i];
    if (guessed == 0)
        return;
    const std::string more = guessed > 1 ? fmt::format(" and {} more files are", guessed - 1) : " is";
    const std::string text =
        fmt::format("{}{} not UTF-8 and read as windows-1252; state the encoding if it is another", first, more);
    report.outcome.remarks.push_back(text);
    report.log.push_back({LogLevel::Info, text + "."});
}

void addCounts(repository::TableFacts& facts, const TableOutcome& result) {
    facts.totalRecords = result.rowsOfSource;
    facts.processedRecords = result.rows;
    facts.damagedRecords = result.damagedRows;
}

} // namespace

Result<OpenedFiles> openTable(const job::TableDescription& table, source::KeepGoing keepGoing) {
    auto files = openFiles(table, std::move(keepGoing));
    if (!files)
        return files.error();
    OpenedFiles opened;
    opened.files = files->get();
    opened.reader = std::move(*files);
    if (table.sample.kind != source::Sample::Kind::All) {
        auto sampled = std::make_unique<source::SampledReader>(std::move(opened.reader), table.sample);
        opened.sampled = sampled.get();
        opened.reader = std::move(sampled);
    }
    return opened;
}

TableReport reportOfFiles(const job::JobDescription& job, const job::TableDescription& table,
                          const job::TableDescription& base, const OpenedFiles& opened, std::int64_t rows,
                          std::int64_t rowsOfBase) {
    TableReport report;
    TableOutcome& result = report.outcome;
    result.name = table.name;
    result.rows = rows;
    result.rowsOfSource = opened.sampled ? opened.sampled->rowsSeen() : rowsOfBase;
    result.sample = base.sample.text();
    result.fields = opened.reader->columnNames().size();
    if (!table.isFiltered()) {
        const source::RowReader& reader = *opened.reader;
        result.damagedRows = reader.damagedRowCount();
        result.damage.assign(reader.damagedRows().begin(), reader.damagedRows().end());
        result.encoding = opened.files->encodingOf(0).name;
        if (opened.files->files().size() > 1)
            result.files = opened.files->files();
    }

    repository::TableFacts& facts = report.facts;
    facts.dataSource = job.dataSource;
    facts.name = table.name;
    facts.isTextFile = true;
    facts.textFile = fileFacts(base, *opened.files);
    if (table.isFiltered()) {
        facts.name = table.basedOn;
        facts.objectName = table.name;
        facts.kind = repository::TableKind::Filter;
        facts.filter = table.where.text;
    }
    addCounts(facts, result);

    if (!table.isFiltered())
        addGuessedEncoding(report, base, *opened.files);
    if (!result.sample.empty())
        report.log.push_back({LogLevel::Info, fmt::format("Sample: {}; {} of {} rows.", result.sample, result.rows,
                                                          result.rowsOfSource)});
    for (std::size_t i = 0; i < std::min(result.files.size(), kListedFiles); ++i)
        report.log.push_back(
            {LogLevel::Info, fmt::format("File {}: {} rows.", result.files[i], opened.files->rowsOfFiles()[i])});
    for (const source::DamagedRow& row : result.damage)
        report.log.push_back({LogLevel::Warning, damageText(row, *opened.files)});
    countDamage(report);
    return report;
}

TableReport reportOfDatabase(const job::TableDescription& table, repository::TableFacts facts, std::int64_t rows,
                             std::int64_t rowsOfBase, const TableOutcome& damage) {
    TableReport report;
    TableOutcome& result = report.outcome;
    if (!table.isFiltered())
        result = damage;
    result.name = table.name;
    result.place = "Row";
    result.rows = rows;
    result.rowsOfSource = rowsOfBase;
    report.facts = std::move(facts);
    addCounts(report.facts, result);
    for (const source::DamagedRow& row : result.damage)
        report.log.push_back({LogLevel::Warning, rowText(row, damage.fields)});
    countDamage(report);
    return report;
}

} // namespace tavix::profiling
