#pragma once

#include "profiling/JobRunner.h"
#include "repository/RunWriter.h"
#include "source/FileSetReader.h"
#include "source/SampledReader.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace tavix::profiling {

/// The opened files of a table, and a reader of the rows that are profiled.
struct OpenedFiles {
    std::unique_ptr<source::RowReader> reader;
    source::FileSetReader* files = nullptr;   ///< the innermost reader
    source::SampledReader* sampled = nullptr; ///< null without a sample
};

/// `keepGoing` is asked while a pipe has nothing to read.
[[nodiscard]] Result<OpenedFiles> openTable(const job::TableDescription& table, source::KeepGoing keepGoing = {});

struct LogLine {
    repository::LogLevel level = repository::LogLevel::Info;
    std::string text;
};

/// What a run stores about a table besides its fields.
struct TableReport {
    repository::TableFacts facts;
    TableOutcome outcome;
    std::vector<LogLine> log;
};

/// The report on a table of files that were read: the base table, or a filtered one over it. `rows` rows of the table
/// and `rowsOfBase` of the base were profiled.
[[nodiscard]] TableReport reportOfFiles(const job::JobDescription& job, const job::TableDescription& table,
                                        const job::TableDescription& base, const OpenedFiles& opened, std::int64_t rows,
                                        std::int64_t rowsOfBase);

/// The report on a database table whose other facts are in `facts`, with the damaged rows of the source; a filtered
/// table reports none.
[[nodiscard]] TableReport reportOfDatabase(const job::TableDescription& table, repository::TableFacts facts,
                                           std::int64_t rows, std::int64_t rowsOfBase, const TableOutcome& damage);

} // namespace tavix::profiling
