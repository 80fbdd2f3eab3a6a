#pragma once

#include "job/JobDescription.h"
#include "repository/Facts.h"
#include "source/FileSetReader.h"

#include <memory>
#include <string>
#include <vector>

namespace tavix::profiling {

/// How a table's files are to be read.
[[nodiscard]] source::TextFileOptions textOptions(const job::TableDescription& table);

/// Opens the file or files of a table that is no filtered one.
/// `keepGoing` is asked while a pipe has nothing to read.
[[nodiscard]] Result<std::unique_ptr<source::FileSetReader>> openFiles(const job::TableDescription& table,
                                                                       source::KeepGoing keepGoing = {});
/// The paths of such a table: one, or those of several.
[[nodiscard]] std::vector<std::string> pathsOf(const job::TableDescription& table);

/// How they were read, when all are.
[[nodiscard]] repository::TextFileFacts fileFacts(const job::TableDescription& table,
                                                  const source::FileSetReader& reader);

/// A damaged row in words: "Line 3: ...", of several files with the name of its own.
[[nodiscard]] std::string damageText(const source::DamagedRow& row, const source::FileSetReader& reader);

} // namespace tavix::profiling
