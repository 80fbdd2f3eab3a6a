#include "source/OdbcReader.h"

#include "base/Characters.h"
#include "source/InterruptibleCall.h"
#include "source/SqliteText.h"
#include "source/TextArena.h"
#include "source/Utf8.h"

#include <fmt/format.h>
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <cstring>

namespace tavix::source {

namespace {

constexpr std::size_t kBlockRows = 8192;
constexpr std::size_t kBlockBytes = std::size_t{4} << 20;
constexpr std::size_t kBoundBytes = std::size_t{2} << 20;
constexpr std::size_t kMostAtOnce = 512;
/// The buffer of a value of unknown length; a longer value costs calls of its own.
constexpr std::size_t kUsualLength = 1024;
constexpr std::size_t kLongest = std::size_t{1} << 30;

std::size_t terminatorSize(bool isWide) {
    return isWide ? sizeof(SQLWCHAR) : 1;
}

} // namespace

struct OdbcReader::Text {
    TextArena arena;
};

struct OdbcReader::Column {
    std::size_t width = 0; ///< bytes of a row's value with its terminator; 0: not bound
    bool isWide = false;   ///< UTF-16
    std::vector<char> values;
    std::vector<SQLLEN> sizes;
};

OdbcReader::OdbcReader(const OdbcConnection& connection, OdbcStatement statement, std::span<const std::string> names,
                       KeepGoing keepGoing)
    : m_connection(connection),
      m_statement(std::move(statement)),
      m_names(names.begin(), names.end()),
      m_keepGoing(std::move(keepGoing)) {}

OdbcReader::~OdbcReader() = default;

Result<std::unique_ptr<OdbcReader>> OdbcReader::open(const OdbcConnection& connection, const SqlText& text,
                                                     std::span<const DeclaredColumn> columns,
                                                     std::span<const std::string> names, KeepGoing keepGoing) {
    auto statement = OdbcStatement::create(connection);
    if (!statement)
        return statement.error();
    if (Status status = statement->execute(text.sql, text.parameters, keepGoing); !status)
        return status.error();
    if (statement->columnCount() != columns.size())
        return Error{fmt::format("Source \"{}\": the table has changed while it was read.", connection.name())};
    std::unique_ptr<OdbcReader> reader(new OdbcReader(connection, std::move(*statement), names, std::move(keepGoing)));
    if (Status status = reader->bind(columns); !status)
        return status.error();
    return reader;
}

Status OdbcReader::bind(std::span<const DeclaredColumn> columns) {
    const bool isUtf8 = m_connection.dialect().isUtf8;
    std::size_t rowBytes = 0;
    bool isLengthKnown = true;
    bool isBindable = true;
    m_columns.resize(columns.size());
    for (std::size_t c = 0; c < columns.size(); ++c) {
        Column& column = m_columns[c];
        const auto longest = columns[c].longestText();
        const bool isSure = longest && !m_connection.dialect().ignoresDeclaredLength;
        column.isWide = !isUtf8;
        // A driver that cannot read a bound column again may not allow a bound column after an unbound one either.
        isBindable = isBindable && (isSure || m_connection.traits().readsBoundAgain);
        isLengthKnown = isLengthKnown && isSure;
        const std::size_t letters = longest && (isSure || *longest < kUsualLength) ? *longest : kUsualLength;
        column.width = isBindable ? (letters + 1) * terminatorSize(column.isWide) : 0;
        rowBytes += column.width + sizeof(SQLLEN);
    }
    if (isLengthKnown)
        m_rowsAtOnce = std::clamp<std::size_t>(kBoundBytes / std::max<std::size_t>(rowBytes, 1), 1, kMostAtOnce);
    const SQLHSTMT handle = m_statement.handle();
    // The interface passes numbers as pointers.
    const auto rowsAtOnce = reinterpret_cast<SQLPOINTER>(m_rowsAtOnce); // NOLINT(performance-no-int-to-ptr)
    SQLSetStmtAttr(handle, SQL_ATTR_ROW_ARRAY_SIZE, rowsAtOnce, 0);
    SQLSetStmtAttr(handle, SQL_ATTR_ROWS_FETCHED_PTR, &m_fetched, 0);
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        Column& column = m_columns[c];
        column.sizes.resize(m_rowsAtOnce);
        column.values.resize(column.width * m_rowsAtOnce);
        if (column.width == 0)
            continue;
        if (!SQL_SUCCEEDED(SQLBindCol(handle, static_cast<SQLUSMALLINT>(c + 1),
                                      column.isWide ? SQL_C_WCHAR : SQL_C_CHAR, column.values.data(),
                                      static_cast<SQLLEN>(column.width), column.sizes.data())))
            return m_statement.failure();
    }
    return {};
}

Result<bool> OdbcReader::read(RowBlock& block) {
    block.text.reset();
    block.rows = 0;
    block.columns.resize(m_names.size());
    for (auto& column : block.columns)
        if (column.size() < kBlockRows + kMostAtOnce)
            column.resize(kBlockRows + kMostAtOnce);
    if (m_isAtEnd)
        return false;
    if (!m_text || m_text.use_count() > 1)
        m_text = std::make_shared<Text>();
    m_text->arena.clear();
    m_textSize = 0;
    Status status;
    const bool isCancelled =
        runInterruptibly([&] { status = fill(block); }, m_keepGoing, [&] { m_statement.cancel(); });
    if (isCancelled || !status) {
        m_isAtEnd = true;
        block.rows = 0;
        return isCancelled ? Error{kCancelled} : status.error();
    }
    block.text = m_text;
    return block.rows > 0;
}

Status OdbcReader::fill(RowBlock& block) {
    while (block.rows < kBlockRows && m_textSize < kBlockBytes) {
        m_fetched = 1;
        const SQLRETURN code = SQLFetch(m_statement.handle());
        if (code == SQL_NO_DATA) {
            m_isAtEnd = true;
            return {};
        }
        if (!SQL_SUCCEEDED(code))
            return m_statement.failure();
        const auto fetched = static_cast<std::size_t>(m_fetched);
        for (std::size_t row = 0; row < fetched; ++row)
            if (Status status = takeRow(block, row); !status)
                return status;
    }
    return {};
}

Status OdbcReader::takeRow(RowBlock& block, std::size_t fetchedRow) {
    m_isRowDamaged = false;
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
        Column& column = m_columns[c];
        Cell& cell = block.columns[c][block.rows];
        const SQLLEN size = column.sizes[fetchedRow];
        if (column.width > 0 && size == SQL_NULL_DATA) {
            cell = Cell{};
        } else if (column.width > 0 && size >= 0 &&
                   static_cast<std::size_t>(size) <= column.width - terminatorSize(column.isWide)) {
            cell = keep(column, column.values.data() + fetchedRow * column.width, static_cast<std::size_t>(size));
        } else if (m_rowsAtOnce > 1) {
            return Error{fmt::format("Source \"{}\": a value of \"{}\" is longer than its column allows.",
                                     m_connection.name(), m_names[c])};
        } else {
            bool isNull = false;
            if (Status status = readLong(c, isNull); !status)
                return status;
            cell = isNull ? Cell{} : keep(column, m_long.data(), m_long.size());
        }
    }
    ++block.rows;
    ++m_rows;
    if (m_isRowDamaged) {
        ++m_damagedCount;
        if (m_damaged.size() < kListedDamage)
            m_damaged.push_back({m_rows, Damage::BadBytes, m_columns.size(), 0});
    }
    return {};
}

Status OdbcReader::readLong(std::size_t column, bool& isNull) {
    constexpr std::size_t kFirst = std::size_t{16} << 10;
    const bool isWide = m_columns[column].isWide;
    const std::size_t terminator = terminatorSize(isWide);
    std::size_t used = 0;
    for (std::size_t piece = kFirst;; piece = std::min(piece * 2, std::size_t{8} << 20)) {
        m_long.resize(used + piece);
        SQLLEN size = 0;
        const SQLRETURN code =
            SQLGetData(m_statement.handle(), static_cast<SQLUSMALLINT>(column + 1), isWide ? SQL_C_WCHAR : SQL_C_CHAR,
                       m_long.data() + used, static_cast<SQLLEN>(piece), &size);
        if (code == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(code))
            return m_statement.failure();
        isNull = size == SQL_NULL_DATA;
        if (isNull)
            break;
        const bool isCut = size == SQL_NO_TOTAL || static_cast<std::size_t>(size) > piece - terminator;
        used += isCut ? piece - terminator : static_cast<std::size_t>(size);
        if (!isCut)
            break;
        if (used > kLongest)
            return Error{fmt::format("Source \"{}\": row {} has a value of more than 1 GiB in \"{}\".",
                                     m_connection.name(), m_rows + 1, m_names[column])};
    }
    m_long.resize(used);
    return {};
}

Cell OdbcReader::keep(const Column& column, const char* data, std::size_t size) {
    const Cell cell = column.isWide ? keepWide(data, size) : keepText(data, size);
    m_textSize += cell.size;
    return cell;
}

Cell OdbcReader::keepText(const char* data, std::size_t size) {
    if (const auto text = decodedNulText({data, size}))
        return keepText(text->data(), text->size());
    if (validUtf8Prefix({data, size}) == size)
        return {m_text->arena.keep({data, size}), static_cast<std::uint32_t>(size), false};
    m_isRowDamaged = true;
    char* const at = m_text->arena.allocate(size * 3);
    const std::size_t repaired = repairUtf8({data, size}, at);
    m_text->arena.giveBack(size * 3 - repaired);
    return {at, static_cast<std::uint32_t>(repaired), false};
}

Cell OdbcReader::keepWide(const char* data, std::size_t size) {
    constexpr std::uint32_t kReplacement = 0xFFFD;
    const std::size_t units = size / sizeof(char16_t);
    char* const at = m_text->arena.allocate(units * 3);
    char* to = at;
    const auto unit = [&](std::size_t i) {
        char16_t value = 0;
        std::memcpy(&value, data + i * sizeof value, sizeof value);
        return static_cast<std::uint32_t>(value);
    };
    for (std::size_t i = 0; i < units; ++i) {
        const std::uint32_t first = unit(i);
        const bool isHigh = first >= 0xD800 && first < 0xDC00;
        const bool isPair = isHigh && i + 1 < units && unit(i + 1) >= 0xDC00 && unit(i + 1) < 0xE000;
        if (isPair) {
            to = putCharacter(to, 0x10000 + ((first - 0xD800) << 10) + (unit(++i) - 0xDC00));
        } else if (first >= 0xD800 && first < 0xE000) {
            m_isRowDamaged = true;
            to = putCharacter(to, kReplacement);
        } else {
            to = putCharacter(to, first);
        }
    }
    const auto used = static_cast<std::size_t>(to - at);
    m_text->arena.giveBack(units * 3 - used);
    return {at, static_cast<std::uint32_t>(used), false};
}

} // namespace tavix::source
