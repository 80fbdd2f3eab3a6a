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

/// A table's files, opened, and the rows of them that are profiled.
struct OpenedFiles {
    std::unique_ptr<source::RowReader> reader;
    source::FileSetReader* files = nullptr;   ///< at the end of the reader
    source::SampledReader* sampled = nullptr; ///< when there is a sample
};

/// `keepGoing` is asked while a pipe has nothing to read.
[[nodiscard]] Result<OpenedFiles> openTable(const job::TableDescription& table, source::KeepGoing keepGoing = {});

struct LogLine {
    repository::LogLevel level = repository::LogLevel::Info;
    std::string text;
};

/// What a run stores of a table beside its fields.
struct TableReport {
    repository::TableFacts facts;
    TableOutcome outcome;
    std::vector<LogLine> log;
};

/// Of a table made of files that were read: the base table or a filtered one over it, `rows` of which were profiled
/// while `rowsOfBase` were of the base.
[[nodiscard]] TableReport reportOfFiles(const job::JobDescription& job, const job::TableDescription& table,
                                        const job::TableDescription& base, const OpenedFiles& opened, std::int64_t rows,
                                        std::int64_t rowsOfBase);

/// Of a table of a database, whose other facts are there: with the damage that was found in its rows, none in a
/// filtered one's.
[[nodiscard]] TableReport reportOfDatabase(const job::TableDescription& table, repository::TableFacts facts,
                                           std::int64_t rows, std::int64_t rowsOfBase, const TableOutcome& damage);

} // namespace tavix::profiling
