#include "sql/ConnectionImpl.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <climits>
#include <utility>

namespace tavix::sql {

Connection::Impl::~Impl() {
    for (const auto& [text, statements] : idle) {
        for (sqlite3_stmt* statement : statements)
            sqlite3_finalize(statement);
    }
    sqlite3_close_v2(handle);
}

Failure Connection::Impl::failure() const {
    return {sqlite3_extended_errcode(handle), sqlite3_system_errno(handle), isReader};
}

Error Connection::Impl::fail() {
    lastError = describeError(failure(), sqlite3_errmsg(handle), path);
    return Error{lastError};
}

Connection::Connection(std::unique_ptr<Impl> impl) : m_impl(std::move(impl)) {}
Connection::~Connection() = default;

void Connection::waitWhile(std::function<bool()> mayWait) {
    m_impl->mayWait = std::move(mayWait);
    sqlite3_busy_handler(
        m_impl->handle,
        [](void* impl, int) {
            constexpr int kMilliseconds = 50;
            if (!static_cast<Impl*>(impl)->mayWait())
                return 0;
            sqlite3_sleep(kMilliseconds);
            return 1;
        },
        m_impl.get());
}

void Connection::goOnWhile(std::function<bool()> mayGoOn) {
    constexpr int kInstructions = 20'000; // about a millisecond
    m_impl->mayGoOn = std::move(mayGoOn);
    sqlite3_progress_handler(
        m_impl->handle, m_impl->mayGoOn ? kInstructions : 0,
        [](void* impl) { return static_cast<Impl*>(impl)->mayGoOn() ? 0 : 1; }, m_impl.get());
}

Status Connection::execute(const std::string& script) {
    if (sqlite3_exec(m_impl->handle, script.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK)
        return m_impl->fail();
    return {};
}

Result<Statement> Connection::prepare(std::string_view sql) {
    auto found = m_impl->idle.find(sql);
    if (found == m_impl->idle.end())
        found = m_impl->idle.emplace(std::string(sql), std::vector<sqlite3_stmt*>()).first;
    auto state = std::make_unique<Statement::State>();
    state->connection = m_impl.get();
    state->home = &found->second;
    if (found->second.empty()) {
        if (sqlite3_prepare_v3(m_impl->handle, sql.data(), static_cast<int>(sql.size()), SQLITE_PREPARE_PERSISTENT,
                               &state->handle, nullptr) != SQLITE_OK)
            return m_impl->fail();
    } else {
        state->handle = found->second.back();
        found->second.pop_back();
    }
    return Statement(std::move(state));
}

Result<std::int64_t> Connection::queryInteger(std::string_view sql) {
    auto statement = prepare(sql);
    if (!statement)
        return statement.error();
    switch (statement->step()) {
    case Step::Row:
        return statement->integer(0);
    case Step::Done:
        return Error{fmt::format("The repository \"{}\" lacks what was asked for.", m_impl->path)};
    default:
        return Error{m_impl->lastError};
    }
}

Status Connection::setApplicationId(std::int32_t id) {
    return execute(fmt::format("PRAGMA application_id = {}", id));
}

Status Connection::setSchemaVersion(std::int32_t version) {
    return execute(fmt::format("PRAGMA user_version = {}", version));
}

Result<bool> Connection::isEmpty() {
    auto count = queryInteger("SELECT COUNT(*) FROM sqlite_master");
    if (!count)
        return count.error();
    return *count == 0;
}

Status Connection::enableConcurrency() {
    return execute("PRAGMA journal_mode = WAL");
}

Status Connection::setCacheSize(std::size_t bytes) {
    constexpr std::size_t kKib = 1024;
    constexpr std::size_t kMostKib = INT_MAX;
    return execute(fmt::format("PRAGMA cache_size = -{}", std::min(bytes / kKib, kMostKib)));
}

Result<bool> Connection::freeSpace(int pages) {
    auto before = queryInteger("PRAGMA freelist_count");
    if (!before)
        return before.error();
    if (*before == 0)
        return false;
    if (auto freed = execute(fmt::format("PRAGMA incremental_vacuum({})", pages)); !freed)
        return freed.error();
    auto after = queryInteger("PRAGMA freelist_count");
    if (!after)
        return after.error();
    return *after > 0 && *after < *before;
}

void Connection::checkpoint() {
    sqlite3_wal_checkpoint_v2(m_impl->handle, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
}

Result<std::vector<std::string>> Connection::findDamage(int atMost) {
    std::vector<std::string> found;
    auto check = prepare(fmt::format("PRAGMA integrity_check({})", atMost));
    if (!check)
        return check.error();
    Step step = check->step();
    for (; step == Step::Row; step = check->step())
        if (check->text(0) != "ok")
            found.emplace_back(check->text(0));
    if (step == Step::Failed)
        return Error{m_impl->lastError};
    return found;
}

Result<std::int64_t> Connection::nextId(std::string_view table) {
    auto select = prepare("SELECT COALESCE(MAX(seq), 0) + 1 FROM sqlite_sequence WHERE name = ?1");
    if (!select)
        return select.error();
    if (select->bind(1, table).step() != Step::Row)
        return Error{errorText()};
    return select->integer(0);
}

std::int64_t Connection::lastInsertId() const {
    return sqlite3_last_insert_rowid(m_impl->handle);
}

std::int64_t Connection::changes() const {
    return sqlite3_changes64(m_impl->handle);
}

std::string Connection::errorText() const {
    return m_impl->lastError;
}

void Connection::interrupt() {
    sqlite3_interrupt(m_impl->handle);
}

const std::string& Connection::path() const {
    return m_impl->path;
}

Result<Snapshot> Snapshot::begin(Connection& connection) {
    if (auto begun = connection.execute("SAVEPOINT snapshot"); !begun)
        return begun.error();
    return Snapshot(connection);
}

Snapshot::Snapshot(Snapshot&& other) noexcept : m_connection(std::exchange(other.m_connection, nullptr)) {}

Snapshot::~Snapshot() {
    if (m_connection)
        (void)m_connection->execute("RELEASE snapshot");
}

Result<Transaction> Transaction::begin(Connection& connection) {
    if (auto begun = connection.execute("BEGIN IMMEDIATE"); !begun)
        return begun.error();
    return Transaction(connection);
}

Transaction::Transaction(Transaction&& other) noexcept : m_connection(std::exchange(other.m_connection, nullptr)) {}

Transaction::~Transaction() {
    // A failed statement may have rolled back already; then this fails harmlessly.
    if (m_connection)
        (void)m_connection->execute("ROLLBACK");
}

Status Transaction::commit() {
    if (!m_connection)
        return Error{"The transaction has ended already."};
    if (auto committed = m_connection->execute("COMMIT"); !committed)
        return committed;
    m_connection = nullptr;
    return {};
}

} // namespace tavix::sql
