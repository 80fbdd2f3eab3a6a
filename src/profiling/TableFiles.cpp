#include "profiling/TableFiles.h"

#include <fmt/format.h>

#include <filesystem>
#include <utility>

namespace tavix::profiling {

using source::DamagedRow;
using source::FileSetReader;

source::TextFileOptions textOptions(const job::TableDescription& table) {
    source::TextFileOptions options;
    options.delimiter = table.delimiter;
    options.hasHeader = table.hasHeader;
    options.findHeader = table.findHeader;
    options.encoding = table.encoding;
    options.quote = table.quote;
    return options;
}

Result<std::unique_ptr<FileSetReader>> openFiles(const job::TableDescription& table, source::KeepGoing keepGoing) {
    source::TextFileOptions options = textOptions(table);
    options.keepGoing = std::move(keepGoing);
    return FileSetReader::open(pathsOf(table), options);
}

std::vector<std::string> pathsOf(const job::TableDescription& table) {
    return table.files.empty() ? std::vector<std::string>{table.path} : table.files;
}

repository::TextFileFacts fileFacts(const job::TableDescription& table, const FileSetReader& reader) {
    const source::TextFileReader& last = reader.current();
    repository::TextFileFacts facts;
    facts.path = table.path;
    facts.delimiter = last.delimiter();
    facts.hasHeader = last.hasHeader();
    facts.encoding = last.encoding().encoding->name;
    facts.byteOrderMark = last.hasByteOrderMark();
    facts.size = reader.total();
    facts.modified = reader.modified();
    facts.quote = table.quote;
    for (std::size_t i = 0; i < table.files.size() && i < reader.forms().size(); ++i) {
        const source::FileForm& form = reader.forms()[i];
        facts.files.push_back(
            {table.files[i], form.delimiter, form.encoding->name, form.hasByteOrderMark, form.size, form.modified});
    }
    return facts;
}

std::string damageText(const DamagedRow& row, const FileSetReader& reader) {
    const std::size_t columns = reader.columnNames().size();
    std::string place = fmt::format("Line {}", row.line);
    if (reader.files().size() > 1)
        place =
            fmt::format("{}, line {}", std::filesystem::path(reader.files()[row.file]).filename().string(), row.line);
    const auto cells = fmt::format("{} {} instead of {}", row.cells, row.cells == 1 ? "cell" : "cells", columns);
    switch (row.damage) {
    case source::Damage::TooFewCells:
        return fmt::format("{}: {}; the missing ones are null.", place, cells);
    case source::Damage::TooManyCells:
        return fmt::format("{}: {}; the extra ones are cut.", place, cells);
    case source::Damage::BadBytes:
        return fmt::format("{}: bytes that are not {}; each became U+FFFD.", place, reader.encodingOf(row.file).name);
    case source::Damage::OpenQuote:
        return fmt::format("{}: a quote that is never closed takes the rest of the file.", place);
    }
    return {};
}

} // namespace tavix::profiling
