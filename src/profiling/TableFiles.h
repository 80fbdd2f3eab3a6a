#pragma once

#include "job/JobDescription.h"
#include "repository/Facts.h"
#include "source/FileSetReader.h"

#include <memory>
#include <string>
#include <vector>

namespace tavix::profiling {

/// The options for reading the table's files.
[[nodiscard]] source::TextFileOptions textOptions(const job::TableDescription& table);

/// Opens the files of a table that is not a filtered one. `keepGoing` is asked while a pipe has nothing to read.
[[nodiscard]] Result<std::unique_ptr<source::FileSetReader>> openFiles(const job::TableDescription& table,
                                                                       source::KeepGoing keepGoing = {});
/// The paths of such a table, one or several.
[[nodiscard]] std::vector<std::string> pathsOf(const job::TableDescription& table);

/// How the files were read; call it after the last row.
[[nodiscard]] repository::TextFileFacts fileFacts(const job::TableDescription& table,
                                                  const source::FileSetReader& reader);

/// A damaged row in words: "Line 3: ..."; with the file's name when there are several files.
[[nodiscard]] std::string damageText(const source::DamagedRow& row, const source::FileSetReader& reader);

} // namespace tavix::profiling
