#include "cli/InspectCommand.h"

#include "base/NullText.h"
#include "cli/ArgumentChecks.h"
#include "cli/CommandError.h"
#include "cli/Console.h"
#include "cli/Signals.h"
#include "profiling/FileInspection.h"

#include <CLI/App.hpp>
#include <fmt/format.h>

#include <algorithm>

namespace tavix::cli {

namespace {

using profiling::FileInspection;

constexpr std::int64_t kMostRows = 100;

std::string charText(char c, const char* none) {
    switch (c) {
    case '\0':
        return none;
    case '\t':
        return "tab";
    case ' ':
        return "space";
    default:
        return std::string(1, c);
    }
}

std::string_view reasonText(source::EncodingReason reason) {
    switch (reason) {
    case source::EncodingReason::Stated:
        return "stated";
    case source::EncodingReason::Mark:
        return "byte order mark";
    case source::EncodingReason::ZeroBytes:
        return "zero bytes";
    case source::EncodingReason::Utf8:
        return "well-formed";
    case source::EncodingReason::Fallback:
        return "not UTF-8";
    }
    return {};
}

Section filesSection(bool isRecord) {
    return {"files",
            "Files",
            {{"file", "File"},
             {"size", "Bytes", Column::Kind::Number},
             {"encoding", "Encoding"},
             {"code_page", "Code page", Column::Kind::Number},
             {"encoding_found_by", "Found by"},
             {"byte_order_mark", "Byte order mark"},
             {"delimiter", "Delimiter"},
             {"header", "Header"},
             {"first_row_looks_like", "First row looks like"},
             {"quote", "Quote"},
             {"quoted_cells", "Quoted cells"},
             {"line_ends", "Line ends"},
             {"columns", "Columns", Column::Kind::Number},
             {"rows", "Rows looked at", Column::Kind::Number},
             {"whole_file", "Whole file"},
             {"damaged_rows", "Damaged rows", Column::Kind::Number},
             {"compression", "Compression"}},
            isRecord};
}

std::string yesNo(bool value) {
    return value ? "yes" : "no";
}

Row fileRow(const FileInspection& file, char quote) {
    return Row{file.path,
               file.size > 0 ? KvbDatavar(file.size) : KvbDatavar(),
               std::string(file.encoding.encoding->name),
               std::int64_t{file.encoding.encoding->code},
               std::string(reasonText(file.encoding.reason)),
               yesNo(file.hasByteOrderMark),
               charText(file.delimiter, "none"),
               yesNo(file.hasHeader),
               std::string(file.looksLikeNames ? "names" : "data"),
               charText(quote, "none"),
               yesNo(file.hasQuotedCells),
               file.lineEnds,
               static_cast<std::int64_t>(file.columns.size()),
               file.rows,
               yesNo(file.isWhole),
               file.damagedRows,
               std::string(source::nameOf(file.packing))};
}

void listColumns(Listing& listing, const std::vector<FileInspection>& files) {
    std::size_t rows = 0;
    for (const FileInspection& file : files)
        rows = std::max(rows, file.columns.front().cells.size());
    Section section{"columns",
                    "Columns with the first rows",
                    {{"ordinal", "#", Column::Kind::Number}, {"column", "Column"}, {"type", "Type"}},
                    false,
                    std::string(kNullValue)};
    if (files.size() > 1)
        section.columns.insert(section.columns.begin(), {"file", "File"});
    for (std::size_t r = 1; r <= rows; ++r)
        section.columns.push_back({fmt::format("row_{}", r), fmt::format("Row {}", r)});
    listing.begin(section);
    for (const FileInspection& file : files)
        for (std::size_t c = 0; c < file.columns.size(); ++c) {
            const profiling::InspectedColumn& column = file.columns[c];
            Row row;
            if (files.size() > 1)
                row.emplace_back(file.path);
            row.emplace_back(static_cast<std::int64_t>(c + 1));
            row.emplace_back(column.name);
            row.emplace_back(column.type);
            for (std::size_t r = 0; r < rows; ++r)
                row.emplace_back(r < column.cells.size() ? column.cells[r] : KvbDatavar());
            listing.row(row);
        }
    listing.end();
}

void sayHints(const FileInspection& file) {
    if (file.hasHeader && !file.looksLikeNames)
        say(fmt::format("{}: the first row looks like data; if it is, add --header no", file.path));
    if (!file.isWhole)
        say(fmt::format("{}: only the rows in the first MiB were read", file.path));
}

} // namespace

CLI::App* InspectCommand::declare(CLI::App& program) {
    CLI::App* command = program.add_subcommand("inspect", "Show how text files would be read, and their first rows");
    command->add_option("FILE", m_files, "Text files, or patterns in quotes")->required()->type_name("");
    m_reading.declare(*command);
    command->add_option("--rows", m_rows, "The number of rows to show, at most 100. Default: 5")
        ->type_name("N")
        ->transform(wholeNumber(0, kMostRows));
    command->add_flag("--summary", m_summary, "Describe the files only, without columns and rows");
    command->footer("Reads the first MiB of each file and stores nothing. The options work as for a run. With csv the\n"
                    "columns are listed, or with --summary the files.\n\n"
                    "Examples:\n"
                    "  tavix inspect export.txt\n"
                    "  tavix inspect 'data/*.csv' --summary\n"
                    "  tavix inspect old.csv --encoding 850 --delimiter semicolon --rows 10 --format json");
    return command;
}

void InspectCommand::run(const CommonOptions& options) {
    job::TableDescription table = m_reading.reading();
    std::vector<FileInspection> files;
    for (const std::string& path : existingFiles(m_files)) {
        table.path = path;
        auto found = profiling::inspectFile(table, m_rows, [] { return !isInterrupted(); });
        stopIfInterrupted();
        if (!found)
            throw CommandError(ExitCode::Source, found.error().text);
        files.push_back(std::move(*found));
    }
    const bool withFiles = m_summary || options.format != Format::Csv;
    const bool withColumns = !m_summary;
    Listing listing(options, withFiles && withColumns ? Sections::Several : Sections::One);
    if (withFiles) {
        listing.begin(filesSection(files.size() == 1));
        for (const FileInspection& file : files)
            listing.row(fileRow(file, table.quote));
        listing.end();
    }
    if (withColumns)
        listColumns(listing, files);
    listing.finish();
    for (const FileInspection& file : files)
        sayHints(file);
}

} // namespace tavix::cli
