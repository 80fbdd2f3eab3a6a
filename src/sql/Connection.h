#pragma once

#include "base/Result.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavix::sql {

enum class OpenMode {
    Read,   ///< must exist; writes neither to the file nor, once closed, beside it
    Write,  ///< must exist
    Create, ///< created if it does not exist
};

/// The outcome of one step of a statement.
enum class Step { Row, Done, Failed };

enum class ValueType { Null, Integer, Real, Text, Blob };

class Connection;

/// A prepared statement, borrowed from its connection's pool and returned on destruction. Parameters are numbered from
/// 1, columns from 0. It must not outlive the connection.
class Statement {
  public:
    Statement(Statement&&) noexcept;
    Statement& operator=(Statement&&) noexcept;
    ~Statement();

    Statement& bind(int parameter, std::int64_t value);
    Statement& bind(int parameter, int value) { return bind(parameter, static_cast<std::int64_t>(value)); }
    Statement& bind(int parameter, double value);
    /// Copied.
    Statement& bind(int parameter, std::string_view text);
    Statement& bind(int parameter, const char* text) { return bind(parameter, std::string_view(text)); }
    /// Not copied: the bytes must live until the statement has been stepped to its end or reset.
    Statement& bindBlob(int parameter, std::span<const std::byte> bytes);
    Statement& bindNull(int parameter);

    /// After Failed, the connection's errorText() gives the reason.
    [[nodiscard]] Step step();
    /// Steps to a row that must exist; `missing` is the error if it does not.
    [[nodiscard]] Status stepToRow(const Error& missing);
    /// For statements without rows, or whose rows do not matter: steps to the end and resets.
    [[nodiscard]] Status run();
    /// Makes the statement ready to be stepped again; keeps its bindings.
    void reset();

    [[nodiscard]] int columnCount() const;
    [[nodiscard]] std::string_view columnName(int column) const;
    /// The type of the current row's value; columns have no types.
    [[nodiscard]] ValueType type(int column) const;
    [[nodiscard]] bool isNull(int column) const { return type(column) == ValueType::Null; }
    [[nodiscard]] bool isReal(int column) const { return type(column) == ValueType::Real; }
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] double real(int column) const;
    /// Valid until the next step. Read a real with real(): its text depends on SQLite.
    [[nodiscard]] std::string_view text(int column) const;
    /// Valid until the next step.
    [[nodiscard]] std::span<const std::byte> blob(int column) const;

  private:
    friend class Connection;
    struct State;
    explicit Statement(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// One connection to a repository store. Not thread-safe, except for interrupt().
class Connection {
  public:
    /// Opens a SQLite file. Errors name the problem in a user's words: missing, a folder, no permission, not a
    /// database. Waits for a busy file up to `busyTimeout`.
    [[nodiscard]] static Result<std::unique_ptr<Connection>>
    openFile(const std::string& path, OpenMode mode,
             std::chrono::milliseconds busyTimeout = std::chrono::milliseconds(5000));
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// From now on, waits for a busy file while `mayWait`, called some twenty times a second, returns true.
    void waitWhile(std::function<bool()> mayWait);

    /// From now on, running statements call `mayGoOn` now and then, and fail with "interrupted" when it returns false.
    /// Empty: none is called.
    void goOnWhile(std::function<bool()> mayGoOn);

    /// Runs a script of statements without parameters.
    [[nodiscard]] Status execute(const std::string& script);
    /// A statement from the pool, parsed only if its text was not prepared before.
    [[nodiscard]] Result<Statement> prepare(std::string_view sql);
    /// The first column of the first row of a statement without parameters; an error if it has no row.
    [[nodiscard]] Result<std::int64_t> queryInteger(std::string_view sql);

    /// The program that made the store (0: unknown) and the version of its schema.
    [[nodiscard]] Result<std::int64_t> applicationId() { return queryInteger("PRAGMA application_id"); }
    [[nodiscard]] Result<std::int64_t> schemaVersion() { return queryInteger("PRAGMA user_version"); }
    /// Within the transaction that creates or changes the schema.
    [[nodiscard]] Status setApplicationId(std::int32_t id);
    [[nodiscard]] Status setSchemaVersion(std::int32_t version);
    /// Whether there is no table, view or index.
    [[nodiscard]] Result<bool> isEmpty();
    /// Lets readers and one writer work at the same time from now on; the file keeps the setting.
    [[nodiscard]] Status enableConcurrency();
    /// The most bytes of changed pages that a transaction keeps in memory. If a page is written before the end and
    /// changed again, the commit must re-read everything written after it.
    [[nodiscard]] Status setCacheSize(std::size_t bytes);
    /// Returns at most `pages` unused pages to the file system. True if there are more.
    [[nodiscard]] Result<bool> freeSpace(int pages);
    /// Moves recent changes into the main file, unless a reader prevents it.
    void checkpoint();

    /// Reads the whole file and returns what is wrong with it, at most `atMost` findings; empty if it is sound.
    [[nodiscard]] Result<std::vector<std::string>> findDamage(int atMost);

    /// The next id of a table whose ids are never reused; within a transaction that writes.
    [[nodiscard]] Result<std::int64_t> nextId(std::string_view table);
    [[nodiscard]] std::int64_t lastInsertId() const;
    [[nodiscard]] std::int64_t changes() const;
    /// The last failure of this connection, in a user's words.
    [[nodiscard]] std::string errorText() const;
    /// From any thread: running statements fail with "interrupted".
    void interrupt();

    [[nodiscard]] const std::string& path() const;

  private:
    friend class Statement;
    struct Impl;
    explicit Connection(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

/// During its lifetime all reads see one moment. Has no effect within a transaction.
class Snapshot {
  public:
    [[nodiscard]] static Result<Snapshot> begin(Connection& connection);
    Snapshot(Snapshot&&) noexcept;
    Snapshot& operator=(Snapshot&&) = delete;
    ~Snapshot();

  private:
    explicit Snapshot(Connection& connection) : m_connection(&connection) {}
    Connection* m_connection;
};

/// Starts for writing immediately; rolls back on destruction unless committed.
class Transaction {
  public:
    [[nodiscard]] static Result<Transaction> begin(Connection& connection);
    Transaction(Transaction&&) noexcept;
    Transaction& operator=(Transaction&&) = delete;
    ~Transaction();
    [[nodiscard]] Status commit();

  private:
    explicit Transaction(Connection& connection) : m_connection(&connection) {}
    Connection* m_connection;
};

} // namespace tavix::sql
