#include "source/TextFileSearch.h"

#include "base/HeldRepositories.h"
#include "source/ByteWindow.h"
#include "source/CellDecoder.h"
#include "source/TextArena.h"
#include "source/Utf8.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace tavix::source {

namespace {

/// Small enough to stay in the processor's cache between reading and searching.
constexpr std::size_t kPieceSize = std::size_t{1} << 18;
constexpr std::size_t kFirstPiece = std::size_t{1} << 16;
constexpr std::size_t kLargestPiece = std::size_t{1} << 31;
/// The most that one read() searches, and the most rows it returns.
constexpr std::int64_t kTurn = std::int64_t{8} << 20;
constexpr std::size_t kTurnRows = 1024;
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

constexpr std::uint64_t kLastBit = std::uint64_t{1} << 63;

/// The bits from `first` on.
std::uint64_t from(std::size_t first) {
    return first < ByteWindow::kSize ? ~std::uint64_t{0} << first : 0;
}

/// Bit i: an odd number of the bits 0 to i is set.
std::uint64_t prefixXor(std::uint64_t bits) {
    for (unsigned step = 1; step < ByteWindow::kSize; step *= 2)
        bits ^= bits << step;
    return bits;
}

/// The position after the last line end of a text without quotes; `otherwise` if there is none. If `end` splits a CR
/// LF, its CR is the line end; the LF is skipped with the text that follows, before any cell.
const char* lastRowStart(const char* begin, const char* end, const char* otherwise) {
    const auto last = [](const char* from, const char* to, char byte) {
        return static_cast<const char*>(::memrchr(from, byte, static_cast<std::size_t>(to - from)));
    };
    const char* const lineFeed = last(begin, end, '\n');
    const char* const carriageReturn = last(lineFeed ? lineFeed + 1 : begin, end, '\r');
    return carriageReturn ? carriageReturn + 1 : lineFeed ? lineFeed + 1 : otherwise;
}

} // namespace

bool TextFileSearch::canFind(std::string_view value, char quote) {
    return !value.empty() && (quote == '\0' || value.find(quote) == std::string_view::npos) &&
           value.find(kReplacement) == std::string_view::npos;
}

TextFileSearch::TextFileSearch(const TextFileReader& reader, int file)
    : m_path(reader.path()),
      m_file(file),
      m_quote(reader.quote()),
      m_delimiter(reader.delimiter() == '\0' ? '\n' : reader.delimiter()),
      m_names(reader.columnNames().begin(), reader.columnNames().end()),
      m_size(reader.fileSize()),
      m_firstRow(reader.position()),
      m_modified(reader.modified()),
      m_rowLimit(std::clamp<std::size_t>((std::size_t{1} << 20) / m_names.size(), 1, kTurnRows)) {}

TextFileSearch::~TextFileSearch() {
    ::close(m_file);
}

Error TextFileSearch::failure(std::string_view what) const {
    return Error{fmt::format("\"{}\" {}", m_path, what)};
}

Result<std::unique_ptr<TextFileSearch>> TextFileSearch::open(const std::string& path, const TextFileOptions& options) {
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode))
        return Error{fmt::format("\"{}\" is not a file that can be read again", path)};
    // The reader defines how the file is divided.
    TextFileOptions beginning = options;
    if (options.delimiter)
        beginning.pieceSize = kFirstPiece;
    const auto reader = TextFileReader::open(path, beginning);
    if (!reader)
        return reader.error();
    return open(**reader);
}

Result<std::unique_ptr<TextFileSearch>> TextFileSearch::open(const TextFileReader& reader) {
    const std::string& path = reader.path();
    if (Status free = requireNotHeld(path); !free)
        return free.error();
    if (reader.isPacked())
        return std::unique_ptr<TextFileSearch>();
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return Error{fmt::format("\"{}\" cannot be opened: {}", path, std::generic_category().message(errno))};
    std::unique_ptr<TextFileSearch> search(new TextFileSearch(reader, file));
    if (Status status = search->begin(reader.stamp()); !status)
        return status.error();
    return search;
}

Status TextFileSearch::begin(const FileStamp& expected) {
    struct stat info {};
    if (::fstat(m_file, &info) != 0)
        return failure("cannot be read: " + std::generic_category().message(errno));
    m_stamp = stampOf(info);
    if (m_stamp.size != expected.size)
        return failure("changed its size while it was read");
    if (m_stamp != expected)
        return failure("was changed while it was read");
    return {};
}

void TextFileSearch::find(std::size_t column, std::string value) {
    m_column = column;
    m_value = std::move(value);
    // A value that is not valid UTF-8 cannot occur: every such byte is read as U+FFFD.
    if (validUtf8Prefix(m_value) == m_value.size() && static_cast<std::int64_t>(m_value.size()) <= m_size)
        restrictTo({{m_firstRow, m_size}});
}

void TextFileSearch::restrictTo(std::vector<FileRange> ranges) {
    m_ranges = std::move(ranges);
    m_total = 0;
    for (const FileRange& range : m_ranges)
        m_total += range.end - range.begin;
    m_range = 0;
    startRange();
}

void TextFileSearch::startRange() {
    if (m_range < m_ranges.size())
        m_offset = m_ranges[m_range].begin;
    m_rowStart = m_resume = m_end = m_nextQuote = nullptr;
    m_isLast = m_isQuoted = m_mustTake = false;
}

Status TextFileSearch::refill() {
    const auto kept = static_cast<std::size_t>(m_end - m_rowStart);
    const auto judged = static_cast<std::size_t>(m_resume - m_rowStart);
    const std::size_t wanted = std::max(kPieceSize, kept * 2);
    if (wanted > kLargestPiece)
        return failure("has a row of more than 1 GiB");
    if (wanted > m_capacity) {
        auto buffer = std::make_unique_for_overwrite<char[]>(1 + wanted + m_value.size() + 2 * RowScanner::kPadding);
        if (kept > 0)
            std::memcpy(buffer.get() + 1, m_rowStart, kept);
        m_buffer = std::move(buffer);
        m_capacity = wanted;
    } else if (kept > 0) {
        std::memmove(m_buffer.get() + 1, m_rowStart, kept);
    }
    char* const text = m_buffer.get() + 1;
    text[-1] = '\n';
    const std::int64_t rangeEnd = m_ranges[m_range].end;
    std::size_t size = kept;
    while (size < m_capacity && m_offset < rangeEnd) {
        const auto most = std::min(static_cast<std::int64_t>(m_capacity - size), rangeEnd - m_offset);
        const ssize_t got = ::pread(m_file, text + size, static_cast<std::size_t>(most), m_offset);
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return failure("cannot be read: " + std::generic_category().message(errno));
        }
        if (got == 0)
            return failure("changed its size while it was read");
        size += static_cast<std::size_t>(got);
        m_offset += got;
        m_searched += got;
    }
    m_isLast = m_offset == rangeEnd;
    std::memset(text + size, 0, m_value.size() + 2 * RowScanner::kPadding);
    m_rowStart = text;
    m_resume = text + judged;
    m_end = text + size;
    m_nextQuote = nullptr;
    return {};
}

Result<bool> TextFileSearch::read(RowBlock& block) {
    auto arena = std::make_shared<TextArena>();
    block.rows = 0;
    block.columns.resize(m_names.size());
    for (std::vector<Cell>& column : block.columns)
        column.resize(std::max(column.size(), m_rowLimit));
    const std::int64_t turnEnd = m_searched + kTurn;
    while (m_range < m_ranges.size() && block.rows < m_rowLimit && m_searched < turnEnd) {
        if (isRangeDone()) {
            ++m_range;
            startRange();
        } else if (!search(block, *arena)) {
            if (block.rows > 0)
                break; // a caller that wants few rows does not wait for more
            if (Status status = refill(); !status)
                return status.error();
        }
    }
    block.text = std::move(arena);
    return block.rows > 0 || m_range < m_ranges.size();
}

bool TextFileSearch::search(RowBlock& block, TextArena& arena) {
    // The test of a byte needs the one before, and the value and one byte after it.
    const auto behind = static_cast<std::ptrdiff_t>(m_isLast ? 0 : m_value.size() + 2);
    if (!m_end || m_end - m_rowStart < behind)
        return false;
    const char* const limit = m_end - behind;
    for (;;) {
        if (m_mustTake && !takeRow(block, arena))
            return false;
        if (block.rows == m_rowLimit)
            return true;
        if (m_isPlain && !m_isQuoted && m_resume < limit)
            judgePlain(limit);
        if (m_mustTake)
            continue;
        if (m_resume >= limit)
            return m_isLast;
        judgeWindow(limit);
    }
}

void TextFileSearch::judgePlain(const char* limit) {
    if (!m_nextQuote || m_nextQuote < m_resume) {
        const auto left = static_cast<std::size_t>(m_end - m_resume);
        m_nextQuote = m_quote == '\0' ? m_end : static_cast<const char*>(std::memchr(m_resume, m_quote, left));
        if (!m_nextQuote)
            m_nextQuote = m_end;
    }
    const char* const begin = m_resume;
    const char* const end = std::min(limit, m_nextQuote);
    const std::size_t toLast = m_value.size() - 1;
    while (end - m_resume >= static_cast<std::ptrdiff_t>(ByteWindow::kSize)) {
        std::uint64_t candidates =
            ByteWindow(m_resume).positionsOf(m_value.front(), ByteWindow(m_resume + toLast), m_value.back());
        while (candidates != 0 && !looksLikeCell(m_resume + std::countr_zero(candidates), false))
            candidates &= candidates - 1;
        if (candidates != 0) {
            m_resume += std::countr_zero(candidates);
            m_mustTake = true;
            break;
        }
        m_resume += ByteWindow::kSize;
    }
    m_rowStart = lastRowStart(begin, m_resume, m_rowStart);
}

void TextFileSearch::judgeWindow(const char* limit) {
    const char* const text = m_resume;
    const auto size = std::min<std::size_t>(static_cast<std::size_t>(limit - text), ByteWindow::kSize);
    const std::uint64_t valid = ~from(size);
    const ByteWindow window(text);
    const ByteWindow shifted(text + m_value.size() - 1);
    const std::uint64_t lineFeeds = window.positionsOf('\n');
    const std::uint64_t returns = window.positionsOf('\r');
    const std::uint64_t beforeFeeds = lineFeeds >> 1 | (text[ByteWindow::kSize] == '\n' ? kLastBit : 0);
    Marks marks;
    marks.text = text;
    marks.quotes = m_quote == '\0' ? 0 : window.positionsOf(m_quote) & valid;
    marks.lineEnds = (lineFeeds | (returns & ~beforeFeeds)) & valid;
    marks.candidates = window.positionsOf(m_value.front(), shifted, m_value.back()) & valid;
    m_resume = text + size;
    m_isPlain = marks.quotes == 0;
    if (marks.quotes != 0 && size == ByteWindow::kSize &&
        judgeRegular(marks, window.positionsOf(m_delimiter) | lineFeeds | returns))
        return;
    judgeOneByOne(marks);
}

bool TextFileSearch::judgeRegular(const Marks& marks, std::uint64_t separators) {
    const std::uint64_t inside = prefixXor(marks.quotes) ^ (m_isQuoted ? ~std::uint64_t{0} : 0);
    const std::uint64_t opening = marks.quotes & inside;
    const std::uint64_t closing = marks.quotes & ~inside;
    const std::uint64_t behindSeparator = separators << 1 | (isSeparator(marks.text[-1]) ? 1 : 0);
    const std::uint64_t beforeSeparator = separators >> 1 | (isSeparator(marks.text[ByteWindow::kSize]) ? kLastBit : 0);
    // Two adjacent quotes are a doubled one, equivalent to one that closes and one that opens.
    const std::uint64_t odd =
        (opening & ~(behindSeparator | marks.quotes << 1)) | (closing & ~(beforeSeparator | marks.quotes >> 1));
    if (odd != 0)
        return false;
    const std::uint64_t lineEnds = marks.lineEnds & ~inside;
    std::uint64_t candidates = marks.candidates & ((behindSeparator & ~inside) | opening << 1 | 1);
    for (; candidates != 0; candidates &= candidates - 1) {
        const auto place = static_cast<std::size_t>(std::countr_zero(candidates));
        if (!looksLikeCell(marks.text + place, (inside >> place & 1) != 0))
            continue;
        goToRow(marks.text, lineEnds & ~from(place));
        m_mustTake = true;
        return true;
    }
    goToRow(marks.text, lineEnds);
    m_isQuoted = (inside & kLastBit) != 0;
    return true;
}

void TextFileSearch::judgeOneByOne(Marks marks) {
    for (std::uint64_t left = marks.quotes | marks.candidates; left != 0;) {
        const auto place = static_cast<std::size_t>(std::countr_zero(left));
        left &= left - 1;
        const char* const at = marks.text + place;
        if ((marks.quotes >> place & 1) == 0) {
            if (!looksLikeCell(at, m_isQuoted))
                continue;
            if (!m_isQuoted)
                goToRow(marks.text, marks.lineEnds & ~from(place));
            m_mustTake = true;
            return;
        }
        if (!m_isQuoted) {
            // Except at the beginning of a cell, a quote is an ordinary character.
            if (isSeparator(at[-1])) {
                goToRow(marks.text, marks.lineEnds & ~from(place));
                m_isQuoted = true;
            }
        } else if (at + 1 < m_end && at[1] == m_quote) {
            left &= from(place + 2);
            m_resume = std::max(m_resume, at + 2);
        } else {
            m_isQuoted = false;
            marks.lineEnds &= from(place + 1);
            // Text after the closing quote belongs to the cell, so the cell is not contiguous in the file.
            if (at + 1 < m_end && !isSeparator(at[1])) {
                m_mustTake = true;
                return;
            }
        }
    }
    if (!m_isQuoted)
        goToRow(marks.text, marks.lineEnds);
}

void TextFileSearch::goToRow(const char* text, std::uint64_t lineEnds) {
    if (lineEnds != 0)
        m_rowStart = text + ByteWindow::kSize - std::countl_zero(lineEnds);
}

bool TextFileSearch::looksLikeCell(const char* at, bool isQuoted) const {
    const std::size_t size = m_value.size();
    if (static_cast<std::size_t>(m_end - at) < size)
        return false;
    const char* const end = at + size;
    const bool isWhole = isQuoted ? at[-1] == m_quote && (end == m_end || *end == m_quote)
                                  : isSeparator(at[-1]) && (end == m_end || isSeparator(*end));
    return isWhole && std::memcmp(at, m_value.data(), size) == 0;
}

bool TextFileSearch::takeRow(RowBlock& block, TextArena& arena) {
    RowScanner scanner(m_rowStart, m_end, m_delimiter, m_isLast, m_quote);
    m_cells.clear();
    const ScannedRow row = scanner.scan([&](std::size_t, const RawCell& cell) { m_cells.push_back(cell); });
    if (row.end == RowEnd::Unfinished)
        return false;
    const std::string_view text(m_rowStart, static_cast<std::size_t>(scanner.position() - m_rowStart));
    m_rowStart = m_resume = scanner.position();
    m_isQuoted = m_mustTake = false;
    keepIfWanted(text, block, arena);
    return true;
}

void TextFileSearch::keepIfWanted(std::string_view row, RowBlock& block, TextArena& arena) {
    bool ignored = false;
    if (m_column >= m_cells.size())
        return;
    const bool isValid = validUtf8Prefix(row) == row.size();
    const Cell found = decodeCell(m_cells[m_column], isValid, m_quote, arena, ignored);
    if (std::string_view(found.data, found.size) != m_value)
        return;
    const char* const kept = arena.keep(row);
    for (std::size_t c = 0; c < m_names.size(); ++c) {
        Cell& cell = block.columns[c][block.rows];
        cell = {};
        if (c < m_cells.size()) {
            RawCell& raw = m_cells[c];
            raw.data = kept + (raw.data - row.data());
            cell = decodeCell(raw, isValid, m_quote, arena, ignored);
        }
    }
    ++block.rows;
}

} // namespace tavix::source
