#include "source/TextFileReader.h"

#include "base/Ascii.h"
#include "base/Encodings.h"
#include "source/CellDecoder.h"
#include "source/DelimiterSniffer.h"
#include "source/FileContent.h"
#include "source/TextArena.h"
#include "source/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace tavix::source {

namespace {

constexpr std::size_t kLargestPiece = std::size_t{1} << 31;
constexpr std::size_t kBlockRows = std::size_t{1} << 15;
constexpr std::size_t kBlockCells = std::size_t{1} << 18;
constexpr std::size_t kMostColumns = 100'000;
/// In a large file; offset indexes grow with the number of ranges, and a search for a value examines about as many.
constexpr std::int64_t kMostPlaces = 2048;
constexpr std::size_t kMarkSize = 16; ///< no byte order mark is longer

/// Names without duplicates and gaps; the first of two equal names stays.
std::vector<std::string> uniqueNames(const std::vector<std::string>& found) {
    std::unordered_set<std::string> taken(found.begin(), found.end());
    std::unordered_set<std::string> used;
    std::unordered_map<std::string, int> next;
    std::vector<std::string> names;
    names.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        const std::string base = found[i].empty() ? fmt::format("Column{}", i + 1) : found[i];
        std::string name = base;
        // A generated name must not be that of a later column. The counter is kept, because many columns may share one
        // name.
        for (int& k = next.try_emplace(base, 2).first->second;
             used.contains(name) || (name != found[i] && taken.contains(name)); ++k)
            name = fmt::format("{} ({})", base, k);
        used.insert(name);
        names.push_back(std::move(name));
    }
    return names;
}

Status checkIsText(const TextInput& input) {
    const auto content = foreignContent(input.beginning(), input.encoding().reason);
    if (!content)
        return {};
    return input.failure(
        fmt::format("{} {}, not text{}. State its encoding or delimiter to read it as text all the same.",
                    input.isPacked() ? "holds" : "is", content->name,
                    content->advice.empty() ? "" : fmt::format(": {}", content->advice)));
}

} // namespace

struct TextFileReader::Piece {
    std::unique_ptr<char[]> bytes;
    std::size_t capacity = 0;
    std::size_t size = 0;
    bool isValid = true; ///< UTF-8 throughout
    TextArena arena;     ///< cells that had to be rewritten
};

TextFileReader::TextFileReader(std::unique_ptr<TextInput> input) : m_input(std::move(input)) {}

TextFileReader::~TextFileReader() = default;

bool looksLikeNames(std::span<const std::string> cells) {
    return std::none_of(cells.begin(), cells.end(), [](const std::string& cell) {
        bool hasDigit = false;
        bool hasLetter = false;
        for (const char c : cell) {
            hasDigit = hasDigit || isAsciiDigit(c);
            // Nearly every non-ASCII character in a name is a letter.
            hasLetter = hasLetter || isAsciiLetter(c) || c < 0;
        }
        return hasDigit && !hasLetter;
    });
}

Result<std::unique_ptr<TextFileReader>> TextFileReader::open(const std::string& path, const TextFileOptions& options) {
    auto input = TextInput::open(path, options.encoding, std::max(options.pieceSize, kMarkSize), options.isPreview,
                                 options.keepGoing);
    if (!input)
        return input.error();
    if (!options.encoding && !options.delimiter)
        if (Status status = checkIsText(**input); !status)
            return status.error();
    std::unique_ptr<TextFileReader> reader(new TextFileReader(std::move(*input)));
    if (Status status = reader->begin(options); !status)
        return status.error();
    return reader;
}

Status TextFileReader::begin(const TextFileOptions& options) {
    m_quote = options.quote;
    m_pieceSize = std::max(options.pieceSize, kMarkSize);
    if (options.isPreview)
        m_pieceSize = TextInput::kSample * 3 + 1; // no encoding makes more bytes of one, so that one piece holds it all
    if (Status status = refill(); !status)
        return status;
    const bool hasPlaces = m_input->encoding().encoding == &encodingUtf8() && m_input->size() > 0 &&
                           !m_input->isPacked() && !options.isPreview;
    if (hasPlaces)
        m_offsetEvery = std::max(options.offsetEvery, static_cast<std::ptrdiff_t>(m_input->size() / kMostPlaces));
    const char* text = m_piece->bytes.get();
    const std::string_view start(text, m_piece->size);
    m_hasMark = start.starts_with("\xEF\xBB\xBF");
    const char* first = text + (m_hasMark ? 3 : 0);
    if (start.find_first_not_of("\r\n", m_hasMark ? 3 : 0) == std::string_view::npos && m_scanner->isLast())
        return failure("is empty");
    if (options.isPreview)
        m_previewText = start.substr(m_hasMark ? 3 : 0);
    m_delimiter = options.delimiter ? *options.delimiter
                                    : sniffDelimiter(first, text + m_piece->size, m_scanner->isLast(), m_quote);
    m_scanner.emplace(first, text + m_piece->size, m_delimiter, m_scanner->isLast(), m_quote);
    return findColumns(options);
}

Status TextFileReader::findColumns(const TextFileOptions& options) {
    // Empty lines before the first row mean nothing; without a header they may be rows of a one-column file, and are
    // read again as such.
    const char* firstLine = m_scanner->position();
    std::vector<RawCell> cells;
    ScannedRow row;
    for (;;) {
        if (m_scanner->isAtEnd() && m_scanner->isLast())
            return failure("is empty");
        cells.clear();
        row = m_scanner->scan([&](std::size_t, const RawCell& cell) { cells.push_back(cell); });
        if (row.end == RowEnd::Unfinished) {
            m_scanner.emplace(firstLine, m_scanner->end(), m_delimiter, m_scanner->isLast(), m_quote);
            m_line = 1;
            if (Status status = refill(); !status)
                return status;
            firstLine = m_scanner->position();
        } else if (row.isEmptyLine) {
            ++m_line;
        } else {
            break;
        }
    }
    if (cells.size() > kMostColumns)
        return failure(fmt::format("has {} columns; more than {} are not read", cells.size(), kMostColumns));
    std::vector<std::string> found(cells.size());
    bool hadBadBytes = false;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        const Cell cell = rewritten(cells[i], hadBadBytes);
        found[i].assign(cell.data, cell.size);
    }
    m_looksLikeNames = source::looksLikeNames(found);
    m_hasHeader = options.findHeader ? m_looksLikeNames : options.hasHeader;
    if (m_hasHeader) {
        noteDamage(row, hadBadBytes);
        m_line += row.lines;
    } else {
        m_scanner.emplace(firstLine, m_scanner->end(), m_delimiter, m_scanner->isLast(), m_quote);
        m_line = 1;
        found.assign(cells.size(), {});
    }
    m_names = uniqueNames(found);
    m_isEmptyLineRow = m_names.size() == 1;
    m_rowLimit = std::clamp<std::size_t>(kBlockCells / m_names.size(), 1, kBlockRows);
    return {};
}

std::shared_ptr<TextFileReader::Piece> TextFileReader::freePiece(std::size_t capacity) {
    for (auto& piece : m_pieces)
        if (piece.use_count() == 1 && piece->capacity >= capacity) {
            piece->arena.clear();
            return piece;
        }
    // A smaller buffer would only be kept unused.
    std::erase_if(m_pieces, [&](const auto& piece) { return piece->capacity < capacity; });
    auto piece = std::make_shared<Piece>();
    piece->bytes = std::make_unique_for_overwrite<char[]>(capacity + RowScanner::kPadding);
    piece->capacity = capacity;
    m_pieces.push_back(piece);
    return piece;
}

Status TextFileReader::refill() {
    if (m_scanner && m_input->isCut())
        return failure("has a first row of more than 1 MiB");
    const std::size_t rest = m_scanner ? static_cast<std::size_t>(m_scanner->end() - m_scanner->position()) : 0;
    const std::size_t capacity = std::max(m_pieceSize, rest * 2);
    if (capacity > kLargestPiece)
        return failure(fmt::format("has a row of more than 1 GiB, which begins in line {}", m_line));
    const std::shared_ptr<Piece> piece = freePiece(capacity);
    if (rest > 0)
        std::memcpy(piece->bytes.get(), m_scanner->position(), rest);
    const auto got = m_input->read(piece->bytes.get() + rest, capacity - rest);
    if (!got)
        return got.error();
    piece->size = rest + *got;
    const bool isLast = piece->size < capacity && !m_input->isCut();
    std::memset(piece->bytes.get() + piece->size, 0, RowScanner::kPadding);
    const std::string_view text(piece->bytes.get(), piece->size);
    const std::size_t judged = piece->size - (isLast ? 0 : unfinishedUtf8Tail(text));
    piece->isValid = validUtf8Prefix(text.substr(0, judged)) == judged;
    m_piece = piece;
    m_scanner.emplace(text.data(), text.data() + text.size(), m_delimiter, isLast, m_quote);
    return {};
}

Cell TextFileReader::rewritten(const RawCell& cell, bool& hadBadBytes) {
    return decodeCell(cell, m_piece->isValid, m_quote, m_piece->arena, hadBadBytes);
}

void TextFileReader::noteDamage(const ScannedRow& row, bool hadBadBytes) {
    const auto note = [&](Damage damage) {
        if (m_damaged.size() < kListedDamage)
            m_damaged.push_back({m_line, damage, row.cells, 0});
    };
    const bool isTooShort = row.cells < m_names.size();
    const bool isTooLong = !m_names.empty() && row.cells > m_names.size();
    if (!isTooShort && !isTooLong && !hadBadBytes && !row.isQuoteOpen)
        return;
    ++m_damagedCount;
    if (isTooShort)
        note(Damage::TooFewCells);
    if (isTooLong)
        note(Damage::TooManyCells);
    if (hadBadBytes)
        note(Damage::BadBytes);
    if (row.isQuoteOpen)
        note(Damage::OpenQuote);
}

void TextFileReader::reserve(RowBlock& block) {
    block.columns.resize(m_names.size());
    m_targets.resize(m_names.size());
    for (std::size_t c = 0; c < m_names.size(); ++c) {
        if (block.columns[c].size() < m_rowLimit)
            block.columns[c].resize(m_rowLimit);
        m_targets[c] = block.columns[c].data();
    }
}

void TextFileReader::finishRow(const ScannedRow& row, RowBlock& block, std::size_t rowIndex) {
    bool hadBadBytes = false;
    for (const Rewrite& rewrite : m_rewrites)
        block.columns[rewrite.column][rowIndex] = rewritten(rewrite.cell, hadBadBytes);
    for (std::size_t c = row.cells; c < m_names.size(); ++c)
        block.columns[c][rowIndex] = Cell{};
    if (row.cells != m_names.size() || hadBadBytes || row.isQuoteOpen)
        noteDamage(row, hadBadBytes);
}

void TextFileReader::notePlace(RowBlock& block, std::size_t row) {
    if (block.offsets.empty() || block.offsets.back().row < row)
        block.offsets.push_back({row, position()});
    m_nextPlace = m_scanner->position() + m_offsetEvery;
}

Result<bool> TextFileReader::read(RowBlock& block) {
    block.text.reset();
    block.rows = 0;
    block.records.clear();
    block.offsets.clear();
    reserve(block);
    const std::size_t columns = m_names.size();
    std::size_t rows = 0;
    m_nextPlace = m_scanner->position();
    while (rows < m_rowLimit) {
        if (m_scanner->isAtEnd() && m_scanner->isLast())
            break;
        if (m_offsetEvery != 0 && m_scanner->position() >= m_nextPlace)
            notePlace(block, rows);
        m_rewrites.clear();
        const bool rewriteAll = !m_piece->isValid;
        const ScannedRow row = m_scanner->scan([&](std::size_t index, const RawCell& cell) {
            if (index >= columns)
                return;
            m_targets[index][rows] = {cell.data, static_cast<std::uint32_t>(cell.size),
                                      cell.size == 0 && !cell.isQuoted};
            if (rewriteAll || cell.hasDoubledQuotes || cell.tailSize > 0)
                m_rewrites.push_back({index, cell});
        });
        if (row.end == RowEnd::Unfinished) {
            if (rows > 0 || m_input->isCut())
                break; // the next block begins with it, in a piece of its own
            if (Status status = refill(); !status)
                return status.error();
            m_nextPlace = m_scanner->position();
            continue;
        }
        if (!row.isEmptyLine || m_isEmptyLineRow) {
            if (!m_rewrites.empty() || row.cells != columns || row.isQuoteOpen)
                finishRow(row, block, rows);
            ++rows;
        }
        m_line += row.lines;
    }
    block.rows = rows;
    if (rows == 0)
        block.offsets.clear();
    else if (m_offsetEvery != 0)
        notePlace(block, rows);
    block.text = m_piece;
    return rows > 0;
}

std::int64_t TextFileReader::position() const {
    return m_input->position(static_cast<std::size_t>(m_scanner->end() - m_scanner->position()));
}

} // namespace tavix::source
