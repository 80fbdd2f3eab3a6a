#include "sql/ConnectionImpl.h"

#include <sqlite3.h>

#include <utility>

namespace tavix::sql {

Statement::State::~State() {
    if (!handle)
        return;
    sqlite3_reset(handle);
    sqlite3_clear_bindings(handle);
    home->push_back(handle);
}

Statement::Statement(std::unique_ptr<State> state) : m_state(std::move(state)) {}
Statement::Statement(Statement&&) noexcept = default;
Statement& Statement::operator=(Statement&&) noexcept = default;
Statement::~Statement() = default;

Statement& Statement::bind(int parameter, std::int64_t value) {
    m_state->bindFailed |= sqlite3_bind_int64(m_state->handle, parameter, value) != SQLITE_OK;
    return *this;
}

Statement& Statement::bind(int parameter, double value) {
    m_state->bindFailed |= sqlite3_bind_double(m_state->handle, parameter, value) != SQLITE_OK;
    return *this;
}

Statement& Statement::bind(int parameter, std::string_view text) {
    // An empty view may have no data, which would bind null.
    const char* data = text.empty() ? "" : text.data();
    m_state->bindFailed |=
        sqlite3_bind_text64(m_state->handle, parameter, data, text.size(), SQLITE_TRANSIENT, SQLITE_UTF8) != SQLITE_OK;
    return *this;
}

Statement& Statement::bindBlob(int parameter, std::span<const std::byte> bytes) {
    int code = bytes.empty()
                   ? sqlite3_bind_zeroblob(m_state->handle, parameter, 0)
                   : sqlite3_bind_blob64(m_state->handle, parameter, bytes.data(), bytes.size(), SQLITE_STATIC);
    m_state->bindFailed |= code != SQLITE_OK;
    return *this;
}

Statement& Statement::bindNull(int parameter) {
    m_state->bindFailed |= sqlite3_bind_null(m_state->handle, parameter) != SQLITE_OK;
    return *this;
}

Step Statement::step() {
    if (m_state->bindFailed) {
        (void)m_state->connection->fail();
        return Step::Failed;
    }
    switch (sqlite3_step(m_state->handle)) {
    case SQLITE_ROW:
        return Step::Row;
    case SQLITE_DONE:
        return Step::Done;
    default:
        (void)m_state->connection->fail();
        return Step::Failed;
    }
}

Status Statement::stepToRow(const Error& missing) {
    switch (step()) {
    case Step::Row:
        return {};
    case Step::Done:
        return missing;
    case Step::Failed:
        break;
    }
    return Error{m_state->connection->lastError};
}

Status Statement::run() {
    Step outcome = Step::Row;
    while (outcome == Step::Row)
        outcome = step();
    reset();
    if (outcome == Step::Failed)
        return Error{m_state->connection->lastError};
    return {};
}

void Statement::reset() {
    sqlite3_reset(m_state->handle);
    m_state->bindFailed = false;
}

int Statement::columnCount() const {
    return sqlite3_column_count(m_state->handle);
}

std::string_view Statement::columnName(int column) const {
    const char* name = sqlite3_column_name(m_state->handle, column);
    return name ? std::string_view(name) : std::string_view();
}

ValueType Statement::type(int column) const {
    switch (sqlite3_column_type(m_state->handle, column)) {
    case SQLITE_INTEGER:
        return ValueType::Integer;
    case SQLITE_FLOAT:
        return ValueType::Real;
    case SQLITE_TEXT:
        return ValueType::Text;
    case SQLITE_BLOB:
        return ValueType::Blob;
    default:
        return ValueType::Null;
    }
}

std::int64_t Statement::integer(int column) const {
    return sqlite3_column_int64(m_state->handle, column);
}

double Statement::real(int column) const {
    return sqlite3_column_double(m_state->handle, column);
}

std::string_view Statement::text(int column) const {
    const unsigned char* data = sqlite3_column_text(m_state->handle, column);
    if (!data)
        return {};
    auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_state->handle, column));
    return {reinterpret_cast<const char*>(data), size};
}

std::span<const std::byte> Statement::blob(int column) const {
    const void* data = sqlite3_column_blob(m_state->handle, column);
    auto size = static_cast<std::size_t>(sqlite3_column_bytes(m_state->handle, column));
    return {static_cast<const std::byte*>(data), data ? size : 0};
}

} // namespace tavix::sql
