#include "source/OdbcConnection.h"

#include "base/Ascii.h"

#include <fmt/format.h>
#include <odbcinst.h>
#include <sql.h>
#include <sqlext.h>

#include <algorithm>
#include <array>

namespace tavix::source {

namespace {

constexpr std::uintptr_t kLoginSeconds = 20;
constexpr int kAttempts = 4;

/// The driver manager takes texts that it does not change as pointers to non-const.
SQLCHAR* in(const std::string& text) {
    return reinterpret_cast<SQLCHAR*>(const_cast<char*>(text.c_str()));
}

// The interface passes numbers as pointers.
SQLPOINTER word(std::uintptr_t value) {
    return reinterpret_cast<SQLPOINTER>(value); // NOLINT(performance-no-int-to-ptr)
}

std::string profileText(const std::string& section, const char* key, const char* file) {
    std::array<char, 1024> buffer{};
    SQLGetPrivateProfileString(section.c_str(), key, "", buffer.data(), static_cast<int>(buffer.size()), file);
    buffer.back() = '\0';
    return buffer.data();
}

/// Name and file of the text's driver, as found in the driver manager's files.
std::string driverOf(const ConnectionText& text) {
    std::string driver;
    if (const std::string* stated = text.find("Driver"))
        driver = *stated;
    else if (const std::string* source = text.find("DSN"))
        driver = profileText(*source, "Driver", "odbc.ini");
    return asciiLower(driver + " " + profileText(driver, "Driver", "odbcinst.ini"));
}

/// Turns off what would cost memory or create a file in some drivers, before anything is known of the engine.
void addDriverSettings(ConnectionText& text) {
    const std::string driver = driverOf(text);
    if (driver.find("sqlite") != std::string::npos) {
        text.setIfAbsent("StepAPI", "1");
        text.setIfAbsent("NoCreat", "1");
    } else if (driver.find("psqlodbc") != std::string::npos || driver.find("postgres") != std::string::npos) {
        text.setIfAbsent("UseDeclareFetch", "1");
        text.setIfAbsent("Fetch", "2000");
    }
}

std::string replaced(std::string text, const std::string& what, std::string_view with) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + with.size()))
        text.replace(at, what.size(), with);
    return text;
}

/// One line, without the prefixes that drivers add to every message.
std::string tidied(std::string text) {
    constexpr std::string_view kAddition = ";\nError while executing the query";
    if (const auto at = text.find(kAddition); at != std::string::npos)
        text.erase(at, kAddition.size());
    std::string out;
    for (const char c : text) {
        const bool isSpace = c == '\n' || c == '\r' || c == '\t' || c == ' ';
        if (!isSpace)
            out += c;
        else if (!out.empty() && out.back() != ' ')
            out += ' ';
    }
    if (out.ends_with(' '))
        out.pop_back();
    return out;
}

/// For a server that rejected the user or password.
std::string userHint(const std::string& source) {
    return fmt::format(". No user is named for it: give one in the environment variable {}, and the password in {}",
                       userVariable(source), passwordVariable(source));
}

struct Diagnosis {
    std::string state;
    std::string text;
};

Diagnosis diagnose(SQLSMALLINT kind, SQLHANDLE handle) {
    // The first record that is not a warning; a failure has one.
    Diagnosis first;
    for (SQLSMALLINT record = 1; record <= 20; ++record) {
        std::array<SQLCHAR, 6> state{};
        std::array<SQLCHAR, 2048> text{};
        SQLINTEGER native = 0;
        SQLSMALLINT size = 0;
        if (!SQL_SUCCEEDED(SQLGetDiagRec(kind, handle, record, state.data(), &native, text.data(),
                                         static_cast<SQLSMALLINT>(text.size()), &size)))
            break;
        Diagnosis found{reinterpret_cast<const char*>(state.data()),
                        tidied(reinterpret_cast<const char*>(text.data()))};
        if (!found.state.starts_with("01"))
            return found;
        if (first.text.empty())
            first = std::move(found);
    }
    return first;
}

/// Drivers do not agree on a SQLSTATE for it.
bool isRefusal(const Diagnosis& diagnosis) {
    if (diagnosis.state.starts_with("28"))
        return true;
    const std::string text = asciiLower(diagnosis.text);
    return diagnosis.state.starts_with("08") &&
           (text.find("password") != std::string::npos || text.find("authentication") != std::string::npos ||
            text.find("access denied") != std::string::npos || text.find("role \"") != std::string::npos);
}

} // namespace

OdbcConnection::OdbcConnection(std::string name, const ConnectionText& text)
    : m_name(std::move(name)), m_publicText(text.publicText()), m_statedUser(text.user()), m_dialect(&dialectOf({})) {}

OdbcConnection::~OdbcConnection() {
    endSnapshot();
    if (m_isConnected)
        SQLDisconnect(m_handle);
    if (m_handle)
        SQLFreeHandle(SQL_HANDLE_DBC, m_handle);
    if (m_environment)
        SQLFreeHandle(SQL_HANDLE_ENV, m_environment);
}

Result<std::unique_ptr<OdbcConnection>> OdbcConnection::open(const std::string& name, ConnectionText text,
                                                             const AskCredentials& ask) {
    std::unique_ptr<OdbcConnection> connection(new OdbcConnection(name, text));
    addDriverSettings(text);
    std::optional<Credentials> credentials = ask ? ask(name, {}) : std::nullopt;
    for (int attempt = 1;; ++attempt) {
        bool isRefused = false;
        const Status status = connection->connect(text, credentials ? &*credentials : nullptr, isRefused);
        if (status)
            break;
        if (isRefused && ask && attempt < kAttempts)
            credentials = ask(name, status.error().text);
        if (!isRefused || !ask || attempt == kAttempts || !credentials) {
            const bool isUserKnown = !text.user().empty() || (credentials && !credentials->user.empty());
            return isRefused && !isUserKnown ? Error{status.error().text + userHint(name)} : status.error();
        }
    }
    connection->learn();
    return connection;
}

Status OdbcConnection::connect(ConnectionText text, const Credentials* credentials, bool& isRefused) {
    m_password.clear();
    if (credentials) {
        if (!credentials->user.empty())
            text.set("UID", credentials->user);
        if (!credentials->password.empty())
            text.set("PWD", credentials->password);
        m_password = credentials->password;
    }
    if (!m_environment) {
        if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &m_environment)))
            return Error{"The ODBC driver manager does not start."};
        SQLSetEnvAttr(m_environment, SQL_ATTR_ODBC_VERSION, word(SQL_OV_ODBC3), 0);
    }
    if (m_handle)
        SQLFreeHandle(SQL_HANDLE_DBC, m_handle);
    m_handle = nullptr;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_DBC, m_environment, &m_handle)))
        return failure(SQL_HANDLE_ENV, m_environment);
    SQLSetConnectAttr(m_handle, SQL_ATTR_LOGIN_TIMEOUT, word(kLoginSeconds), 0);
    const std::string whole = text.text();
    SQLSMALLINT size = 0;
    std::array<SQLCHAR, 2048> completed{};
    const SQLRETURN code =
        SQLDriverConnect(m_handle, nullptr, in(whole), static_cast<SQLSMALLINT>(whole.size()), completed.data(),
                         static_cast<SQLSMALLINT>(completed.size()), &size, SQL_DRIVER_NOPROMPT);
    std::fill(completed.begin(), completed.end(), SQLCHAR{0}); // it contains the password
    if (SQL_SUCCEEDED(code)) {
        m_isConnected = true;
        return {};
    }
    isRefused = isRefusal(diagnose(SQL_HANDLE_DBC, m_handle));
    return failure(SQL_HANDLE_DBC, m_handle, fmt::format("no connection with {}", m_publicText));
}

std::string OdbcConnection::info(int kind) const {
    std::array<char, 256> buffer{};
    SQLSMALLINT size = 0;
    if (!SQL_SUCCEEDED(SQLGetInfo(m_handle, static_cast<SQLUSMALLINT>(kind), buffer.data(),
                                  static_cast<SQLSMALLINT>(buffer.size()), &size)))
        return {};
    buffer.back() = '\0';
    return buffer.data();
}

std::uint32_t OdbcConnection::number(int kind) const {
    SQLUINTEGER value = 0;
    SQLSMALLINT size = 0;
    const SQLRETURN code = SQLGetInfo(m_handle, static_cast<SQLUSMALLINT>(kind), &value, sizeof value, &size);
    return SQL_SUCCEEDED(code) ? value : 0;
}

void OdbcConnection::learn() {
    m_product = info(SQL_DBMS_NAME);
    m_dialect = &dialectOf(m_product);
    m_traits.readsBoundAgain = (number(SQL_GETDATA_EXTENSIONS) & SQL_GD_BOUND) != 0;
    m_traits.usesCatalog = (number(SQL_CATALOG_USAGE) & SQL_CU_DML_STATEMENTS) != 0;
    m_traits.usesSchema = (number(SQL_SCHEMA_USAGE) & SQL_SU_DML_STATEMENTS) != 0;
    m_traits.quote = info(SQL_IDENTIFIER_QUOTE_CHAR);
    if (m_traits.quote == " ")
        m_traits.quote.clear();
    m_traits.catalogSeparator = info(SQL_CATALOG_NAME_SEPARATOR);
    m_traits.patternEscape = info(SQL_SEARCH_PATTERN_ESCAPE);
    if (m_dialect->settings.empty())
        return;
    SQLHSTMT statement = nullptr;
    if (!SQL_SUCCEEDED(SQLAllocHandle(SQL_HANDLE_STMT, m_handle, &statement)))
        return;
    const std::string settings(m_dialect->settings);
    SQLExecDirect(statement, in(settings), SQL_NTS);
    SQLFreeHandle(SQL_HANDLE_STMT, statement);
}

std::string OdbcConnection::currentCatalog() const {
    std::array<char, 512> buffer{};
    SQLINTEGER size = 0;
    if (!SQL_SUCCEEDED(SQLGetConnectAttr(m_handle, SQL_ATTR_CURRENT_CATALOG, buffer.data(),
                                         static_cast<SQLINTEGER>(buffer.size()), &size)))
        return {};
    buffer.back() = '\0';
    return buffer.data();
}

Result<std::string> OdbcConnection::quoted(std::string_view name) const {
    if (name.empty() || name.find('\0') != std::string_view::npos)
        return Error{fmt::format("\"{}\" is not the name of a table or column.", name.substr(0, name.find('\0')))};
    if (m_traits.quote.empty()) {
        const bool isPlain = std::all_of(name.begin(), name.end(),
                                         [](char c) { return isAsciiLetter(c) || isAsciiDigit(c) || c == '_'; });
        if (!isPlain)
            return Error{fmt::format("The source \"{}\" has no quotes for the name \"{}\".", m_name, name)};
        return std::string(name);
    }
    return m_traits.quote + replaced(std::string(name), m_traits.quote, m_traits.quote + m_traits.quote) +
           m_traits.quote;
}

void OdbcConnection::beginSnapshot() {
    if (m_hasSnapshot || m_dialect->snapshot == SqlDialect::Snapshot::None)
        return;
    if (m_dialect->snapshot == SqlDialect::Snapshot::RepeatableRead)
        SQLSetConnectAttr(m_handle, SQL_ATTR_TXN_ISOLATION, word(SQL_TXN_REPEATABLE_READ), 0);
    SQLSetConnectAttr(m_handle, SQL_ATTR_AUTOCOMMIT, word(SQL_AUTOCOMMIT_OFF), 0);
    m_hasSnapshot = true;
}

void OdbcConnection::endSnapshot() {
    if (!m_hasSnapshot)
        return;
    SQLEndTran(SQL_HANDLE_DBC, m_handle, SQL_ROLLBACK);
    SQLSetConnectAttr(m_handle, SQL_ATTR_AUTOCOMMIT, word(SQL_AUTOCOMMIT_ON), 0);
    m_hasSnapshot = false;
}

void OdbcConnection::pretend(const SqlDialect& dialect, const DriverTraits& traits) {
    m_dialect = &dialect;
    m_traits = traits;
}

Error OdbcConnection::failure(int handleKind, void* handle, std::string_view what) const {
    constexpr std::size_t kShortestHidden = 4; // a shorter one would blank out half of any message
    const Diagnosis diagnosis = diagnose(static_cast<SQLSMALLINT>(handleKind), handle);
    std::string text = diagnosis.text.empty() ? "the driver does not say why" : diagnosis.text;
    if (m_password.size() >= kShortestHidden)
        text = replaced(std::move(text), m_password, "***");
    const bool isLost = diagnosis.state.starts_with("08") && m_isConnected;
    return Error{fmt::format("Source \"{}\": {}{}{}{}", m_name, isLost ? "the connection was lost: " : "",
                             what.empty() ? std::string() : std::string(what) + ": ", text,
                             diagnosis.state.empty() ? std::string() : fmt::format(" ({})", diagnosis.state))};
}

} // namespace tavix::source
