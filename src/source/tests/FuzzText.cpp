#include "source/tests/FuzzText.h"

#include "source/TextFileReader.h"
#include "source/Utf8.h"

#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

namespace tavix::source {

namespace {

void holdsOrAborts(bool condition, const char* what) {
    if (condition)
        return;
    std::cerr << what << '\n';
    std::abort();
}

using SlowCell = std::optional<std::string>;
using SlowRow = std::vector<SlowCell>;

/// A character at a time, as docs/definitions.md has it; rows as they stand in the file, an empty line as no cells.
std::vector<SlowRow> readSlowly(std::string_view text, char delimiter, char quote) {
    std::vector<SlowRow> rows;
    std::size_t at = 0;
    while (at < text.size()) {
        SlowRow row;
        const std::size_t begin = at;
        for (bool isRowOver = false; !isRowOver;) {
            std::string cell;
            bool isQuoted = false;
            if (quote != '\0' && at < text.size() && text[at] == quote) {
                isQuoted = true;
                ++at;
                while (at < text.size()) {
                    if (text[at] == quote) {
                        ++at;
                        if (at == text.size() || text[at] != quote)
                            break;
                    }
                    cell += text[at++];
                }
            }
            while (at < text.size() && text[at] != '\n' && text[at] != '\r' &&
                   (delimiter == '\0' || text[at] != delimiter))
                cell += text[at++];
            std::string repaired(cell.size() * 3, '\0');
            repaired.resize(repairUtf8(cell, repaired.data()));
            row.push_back(cell.empty() && !isQuoted ? SlowCell() : SlowCell(repaired));
            isRowOver = at == text.size() || text[at] == '\n' || text[at] == '\r';
            if (!isRowOver)
                ++at;
        }
        const bool isEmptyLine = at == begin;
        if (at < text.size())
            at += text.substr(at, 2) == "\r\n" ? 2 : 1;
        rows.push_back(isEmptyLine ? SlowRow() : row);
    }
    return rows;
}

std::vector<SlowRow> expectedRows(const TextFileReader& reader, std::string_view text, char quote) {
    std::vector<SlowRow> rows = readSlowly(text, reader.delimiter(), quote);
    const std::size_t columns = reader.columnNames().size();
    if (reader.hasHeader()) {
        std::size_t header = 0;
        while (rows[header].empty())
            ++header;
        holdsOrAborts(rows[header].size() == columns, "the first row has another number of cells");
        rows.erase(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(header) + 1);
    }
    std::vector<SlowRow> kept;
    for (SlowRow& row : rows)
        if (!row.empty() || columns == 1) {
            row.resize(columns);
            kept.push_back(row);
        }
    return kept;
}

void readWith(const TextFileOptions& options, std::string_view content) {
    const int file = ::memfd_create("fuzz", MFD_CLOEXEC);
    holdsOrAborts(file >= 0 && ::write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()),
                  "no file to read");
    const auto opened = TextFileReader::open("/proc/self/fd/" + std::to_string(file), options);
    ::close(file);
    if (!opened) {
        holdsOrAborts(!opened.error().text.empty(), "an error without words");
        return;
    }
    TextFileReader& reader = **opened;
    std::optional<std::vector<SlowRow>> expected;
    if (reader.encoding().encoding == &encodingUtf8() && !reader.isPacked())
        expected = expectedRows(reader, content.substr(reader.hasByteOrderMark() ? 3 : 0), options.quote);
    static RowBlock block; // so that its memory is made once
    std::size_t rows = 0;
    for (;;) {
        const auto more = reader.read(block);
        if (!more && reader.isPacked())
            return;
        holdsOrAborts(more.ok(), "an error in the middle");
        if (!*more)
            break;
        for (std::size_t r = 0; r < block.rows; ++r, ++rows) {
            for (std::size_t c = 0; c < block.columns.size(); ++c) {
                const Cell& cell = block.columns[c][r];
                const std::string_view text(cell.data, cell.size);
                holdsOrAborts(validUtf8Prefix(text) == text.size(), "a cell is no UTF-8");
                holdsOrAborts(!expected || (rows < expected->size() &&
                                            (cell.isNull ? !(*expected)[rows][c] : (*expected)[rows][c] == text)),
                              "a cell is not what the slow reader reads");
            }
        }
    }
    holdsOrAborts(!expected || rows == expected->size(), "not the rows that the slow reader reads");
    holdsOrAborts(reader.position() == reader.total(), "not all of the file was read");
    holdsOrAborts(reader.damagedRowCount() <= static_cast<std::int64_t>(rows) + 1, "more damage than rows");
    block.text.reset();
}

} // namespace

void fuzzText(std::string_view bytes) {
    if (bytes.size() < 3)
        return;
    constexpr std::array kEncodings{"",          "UTF-8",       "UTF-16LE", "UTF-16BE",   "windows-1252",
                                    "Shift_JIS", "ISO-2022-JP", "UTF-7",    "HZ-GB-2312", "GB18030",
                                    "IBM037",    "UTF-32LE"};
    constexpr std::array kDelimiters{',', ';', '\t', '\0', 'a'};
    constexpr std::array kQuotes{'"', '\'', '\0'};
    constexpr std::array<std::size_t, 4> kPieces{16, 64, 100, 4096};
    const auto choose = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    TextFileOptions options;
    options.encoding = findEncoding(kEncodings[choose(0) % kEncodings.size()]);
    if (const std::size_t delimiter = choose(1) % (kDelimiters.size() + 1); delimiter < kDelimiters.size())
        options.delimiter = kDelimiters[delimiter];
    options.quote = kQuotes[choose(2) % kQuotes.size()];
    options.pieceSize = kPieces[choose(2) / 4 % kPieces.size()];
    options.hasHeader = choose(2) % 2 == 0;
    options.findHeader = choose(2) >= 128;
    readWith(options, bytes.substr(3));
}

} // namespace tavix::source
