#include "source/OdbcStatement.h"

#include "source/InterruptibleCall.h"

#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <array>

namespace tavix::source {

namespace {

using Kind = DeclaredColumn::Kind;

constexpr std::size_t kLongestText = 32'000;

SQLCHAR* in(const std::string& text) {
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
}

/// An argument of a catalogue function; null for no restriction.
SQLCHAR* orNull(const std::string& text) {
    return text.empty() ? nullptr : in(text);
}

SQLSMALLINT length(const std::string& text) {
    return text.empty() ? SQLSMALLINT{0} : static_cast<SQLSMALLINT>(text.size());
}

} // namespace

DeclaredColumn::Kind kindOfType(int code) {
    switch (code) {
    case SQL_CHAR:
    case SQL_WCHAR:
        return Kind::FixedText;
    case SQL_VARCHAR:
    case SQL_WVARCHAR:
        return Kind::Text;
    case SQL_LONGVARCHAR:
    case SQL_WLONGVARCHAR:
        return Kind::LongText;
    case SQL_SMALLINT:
    case SQL_INTEGER:
    case SQL_TINYINT:
    case SQL_BIGINT:
        return Kind::Integer;
    case SQL_DECIMAL:
    case SQL_NUMERIC:
        return Kind::Decimal;
    case SQL_REAL:
    case SQL_FLOAT:
    case SQL_DOUBLE:
        return Kind::Real;
    case SQL_BIT:
        return Kind::Boolean;
    case SQL_TYPE_DATE:
        return Kind::Date;
    case SQL_TYPE_TIME:
        return Kind::Time;
    case SQL_TYPE_TIMESTAMP:
        return Kind::Timestamp;
    case SQL_GUID:
        return Kind::Uuid;
    case SQL_BINARY:
    case SQL_VARBINARY:
    case SQL_LONGVARBINARY:
        return Kind::Binary;
    default:
        return Kind::Other;
    }
}

Result<OdbcStatement> OdbcStatement::create(const OdbcConnection& connection) {
    OdbcStatement statement(connection);
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, connection.handle(), &statement.m_handle)))
        return connection.failure(SQL_HANDLE_DBC, connection.handle());
    return statement;
}

void OdbcStatement::release() {
    if (m_handle) {
        SQLFreeStmt(m_handle, SQL_CLOSE);
        SQLFreeHandle(SQL_HANDLE_STMT, m_handle);
    }
    m_handle = nullptr;
}

Error OdbcStatement::failure() const {
    return m_connection->failure(SQL_HANDLE_STMT, m_handle);
}

void OdbcStatement::cancel() const {
    SQLCancel(m_handle);
}

Status OdbcStatement::prepare(const std::string& sql) {
    if (!SQL_SUCCEEDED(SQLPrepare(m_handle, in(sql), static_cast<SQLINTEGER>(sql.size()))))
        return failure();
    return {};
}

Status OdbcStatement::execute(const std::string& sql, std::span<const std::optional<std::string>> parameters,
                              const KeepGoing& keepGoing) {
    std::vector<SQLLEN> sizes(parameters.size());
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const auto& text = parameters[i];
        sizes[i] = text ? static_cast<SQLLEN>(text->size()) : SQL_NULL_DATA;
        const SQLULEN room = text && !text->empty() ? text->size() : 1;
        if (!SQL_SUCCEEDED(SQLBindParameter(m_handle, static_cast<SQLUSMALLINT>(i + 1), SQL_PARAM_INPUT, SQL_C_CHAR,
                                            SQL_VARCHAR, room, 0, text ? in(*text) : nullptr, static_cast<SQLLEN>(room),
                                            &sizes[i])))
            return failure();
    }
    SQLRETURN code = SQL_ERROR;
    const bool isCancelled =
        runInterruptibly([&] { code = SQLExecDirect(m_handle, in(sql), static_cast<SQLINTEGER>(sql.size())); },
                         keepGoing, [&] { cancel(); });
    const bool isDone = SQL_SUCCEEDED(code) || code == SQL_NO_DATA;
    Status status = isCancelled ? Status{Error{kCancelled}} : isDone ? Status{} : Status{failure()};
    SQLFreeStmt(m_handle, SQL_RESET_PARAMS);
    return status;
}

std::string OdbcStatement::pattern(const std::string& name) const {
    const std::string& escape = m_connection->traits().patternEscape;
    std::string out;
    for (const char c : name) {
        if (c == '%' || c == '_' || std::string(1, c) == escape)
            out += escape;
        out += c;
    }
    return out;
}

Status OdbcStatement::listTables() {
    static const std::string kTypes = "TABLE,VIEW";
    if (!SQL_SUCCEEDED(SQLTables(m_handle, nullptr, 0, nullptr, 0, nullptr, 0, in(kTypes), length(kTypes))))
        return failure();
    return {};
}

Status OdbcStatement::listColumns(const std::string& catalog, const std::string& schema, const std::string& table) {
    const std::string schemaPattern = pattern(schema);
    const std::string tablePattern = pattern(table);
    if (!SQL_SUCCEEDED(SQLColumns(m_handle, orNull(catalog), length(catalog), orNull(schemaPattern),
                                  length(schemaPattern), in(tablePattern), length(tablePattern), nullptr, 0)))
        return failure();
    return {};
}

Status OdbcStatement::listKeys(const std::string& catalog, const std::string& schema, const std::string& table) {
    if (!SQL_SUCCEEDED(SQLPrimaryKeys(m_handle, orNull(catalog), length(catalog), orNull(schema), length(schema),
                                      in(table), length(table))))
        return failure();
    return {};
}

std::size_t OdbcStatement::columnCount() const {
    SQLSMALLINT count = 0;
    SQLNumResultCols(m_handle, &count);
    return static_cast<std::size_t>(count);
}

std::size_t OdbcStatement::parameterCount() const {
    SQLSMALLINT count = 0;
    return SQL_SUCCEEDED(SQLNumParams(m_handle, &count)) && count > 0 ? static_cast<std::size_t>(count) : 0;
}

std::string OdbcStatement::heading(std::size_t column) const {
    std::array<SQLCHAR, 1024> name{};
    SQLSMALLINT size = 0;
    if (!SQL_SUCCEEDED(SQLDescribeCol(m_handle, static_cast<SQLUSMALLINT>(column + 1), name.data(),
                                      static_cast<SQLSMALLINT>(name.size()), &size, nullptr, nullptr, nullptr,
                                      nullptr)))
        return {};
    return reinterpret_cast<const char*>(name.data());
}

Result<std::vector<DeclaredColumn>> OdbcStatement::resultColumns() const {
    std::vector<DeclaredColumn> columns(columnCount());
    for (std::size_t c = 0; c < columns.size(); ++c) {
        const auto number = static_cast<SQLUSMALLINT>(c + 1);
        std::array<SQLCHAR, 1024> name{};
        SQLSMALLINT size = 0;
        SQLSMALLINT type = 0;
        SQLULEN width = 0;
        SQLSMALLINT places = 0;
        SQLSMALLINT nullable = SQL_NULLABLE_UNKNOWN;
        if (!SQL_SUCCEEDED(SQLDescribeCol(m_handle, number, name.data(), static_cast<SQLSMALLINT>(name.size()), &size,
                                          &type, &width, &places, &nullable)))
            return failure();
        DeclaredColumn& column = columns[c];
        column.name = reinterpret_cast<const char*>(name.data());
        column.kind = kindOfType(type);
        column.isDeclaredByTable = false;
        if (width > 0 && width < 0x7fffffff)
            column.length = static_cast<std::int64_t>(width);
        if (column.kind == Kind::Decimal)
            column.decimalPlaces = places;
        if (nullable != SQL_NULLABLE_UNKNOWN)
            column.isNullable = nullable == SQL_NULLABLE;
        std::array<char, 256> typeName{};
        if (SQL_SUCCEEDED(SQLColAttribute(m_handle, number, SQL_DESC_TYPE_NAME, typeName.data(),
                                          static_cast<SQLSMALLINT>(typeName.size()), &size, nullptr)))
            column.typeName = typeName.data();
    }
    return columns;
}

Result<std::vector<OdbcStatement::Row>> OdbcStatement::rows(std::size_t limit) {
    const std::size_t columns = columnCount();
    std::vector<Row> rows;
    std::vector<char> buffer(kLongestText + 1);
    while (rows.size() < limit) {
        const SQLRETURN code = SQLFetch(m_handle);
        if (code == SQL_NO_DATA)
            break;
        if (!SQL_SUCCEEDED(code))
            return failure();
        Row& row = rows.emplace_back(columns);
        for (std::size_t c = 0; c < columns; ++c) {
            SQLLEN size = 0;
            if (!SQL_SUCCEEDED(SQLGetData(m_handle, static_cast<SQLUSMALLINT>(c + 1), SQL_C_CHAR, buffer.data(),
                                          static_cast<SQLLEN>(buffer.size()), &size)))
                return failure();
            if (size != SQL_NULL_DATA)
                row[c] = buffer.data();
        }
    }
    SQLFreeStmt(m_handle, SQL_CLOSE);
    return rows;
}

} // namespace tavix::source
