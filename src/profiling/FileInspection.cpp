#include "profiling/FileInspection.h"

#include "base/TypeWords.h"
#include "forms/ValueKind.h"
#include "profiling/TableFiles.h"

#include <algorithm>
#include <array>
#include <utility>

namespace tavix::profiling {

namespace {

/// Finds the line ends and whether any cell is quoted.
void inspectLines(FileInspection& found, std::string_view text, char quote) {
    source::RowScanner scanner(text.data(), text.data() + text.size(), found.delimiter, found.isWhole, quote);
    std::array<bool, 3> ends{};
    while (!scanner.isAtEnd()) {
        const auto row =
            scanner.scan([&](std::size_t, const source::RawCell& cell) { found.hasQuotedCells |= cell.isQuoted; });
        if (row.end == source::RowEnd::Unfinished || row.isQuoteOpen)
            break;
        const std::string_view before = text.substr(0, static_cast<std::size_t>(scanner.position() - text.data()));
        if (before.ends_with("\r\n"))
            ends[1] = true;
        else if (before.ends_with('\n'))
            ends[0] = true;
        else if (before.ends_with('\r'))
            ends[2] = true;
    }
    const auto kinds = std::count(ends.begin(), ends.end(), true);
    found.lineEnds = kinds > 1 ? "mixed" : ends[0] ? "LF" : ends[1] ? "CR LF" : ends[2] ? "CR" : "none";
}

Status inspectRows(FileInspection& found, source::TextFileReader& reader, std::size_t firstRows) {
    std::vector<forms::ValueKind> kinds(found.columns.size());
    source::RowBlock block;
    for (;;) {
        const auto more = reader.read(block);
        if (!more)
            return more.error();
        if (!*more)
            break;
        for (std::size_t c = 0; c < kinds.size(); ++c)
            for (std::size_t r = 0; r < block.rows; ++r) {
                const source::Cell& cell = block.columns[c][r];
                if (!cell.isNull && kinds[c] != forms::ValueKind::Text)
                    kinds[c] = forms::joinedKind(kinds[c], forms::kindOf({cell.data, cell.size}));
                if (found.columns[c].cells.size() < firstRows)
                    found.columns[c].cells.emplace_back(cell.isNull ? KvbDatavar()
                                                                    : KvbDatavar(std::string(cell.data, cell.size)));
            }
        found.rows += static_cast<std::int64_t>(block.rows);
    }
    for (std::size_t c = 0; c < kinds.size(); ++c)
        if (const auto type = forms::typeOf(kinds[c]))
            found.columns[c].type = typeWord(*type);
    return {};
}

} // namespace

Result<FileInspection> inspectFile(const job::TableDescription& table, std::size_t firstRows,
                                   source::KeepGoing keepGoing) {
    source::TextFileOptions options = textOptions(table);
    options.isPreview = true;
    options.keepGoing = std::move(keepGoing);
    const auto opened = source::TextFileReader::open(table.path, options);
    if (!opened)
        return opened.error();
    source::TextFileReader& reader = **opened;
    FileInspection found;
    found.path = table.path;
    found.size = reader.total();
    found.packing = reader.packing();
    found.isWhole = !reader.isCut();
    found.encoding = reader.encoding();
    found.hasByteOrderMark = reader.hasByteOrderMark();
    found.delimiter = reader.delimiter();
    found.hasHeader = reader.hasHeader();
    found.looksLikeNames = reader.looksLikeNames();
    for (const std::string& name : reader.columnNames())
        found.columns.push_back({name, {}, {}});
    inspectLines(found, reader.previewText(), table.quote);
    if (Status status = inspectRows(found, reader, firstRows); !status)
        return status.error();
    found.damagedRows = reader.damagedRowCount();
    return found;
}

} // namespace tavix::profiling
