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
    Read,   ///< must exist; nothing is written, neither the file nor, once closed, anything beside it
    Write,  ///< must exist
    Create, ///< made when it does not exist
};

/// What a step of a statement came to.
enum class Step { Row, Done, Failed };

enum class ValueType { Null, Integer, Real, Text, Blob };

class Connection;

/// A prepared statement, borrowed from its connection's pool and given back on destruction. Parameters are numbered
/// from 1, columns from 0. It must not outlive the connection.
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
    /// Not copied: the bytes must live until the statement is stepped to its end or reset.
    Statement& bindBlob(int parameter, std::span<const std::byte> bytes);
    Statement& bindNull(int parameter);

    /// On Failed the connection's errorText() says why.
    [[nodiscard]] Step step();
    /// Steps to a row that must exist; `missing` is the error if it does not.
    [[nodiscard]] Status stepToRow(const Error& missing);
    /// For statements without rows, or whose rows do not matter: steps to the end and resets.
    [[nodiscard]] Status run();
    /// Ready to be stepped again; bindings stay.
    void reset();

    [[nodiscard]] int columnCount() const;
    [[nodiscard]] std::string_view columnName(int column) const;
    /// Of the current row's value; a column has no type of its own.
    [[nodiscard]] ValueType type(int column) const;
    [[nodiscard]] bool isNull(int column) const { return type(column) == ValueType::Null; }
    [[nodiscard]] bool isReal(int column) const { return type(column) == ValueType::Real; }
    [[nodiscard]] std::int64_t integer(int column) const;
    [[nodiscard]] double real(int column) const;
    /// Valid until the next step. A real must be asked for by real(): its text is the store's affair.
    [[nodiscard]] std::string_view text(int column) const;
    /// Valid until the next step.
    [[nodiscard]] std::span<const std::byte> blob(int column) const;

  private:
    friend class Connection;
    struct State;
    explicit Statement(std::unique_ptr<State> state);
    std::unique_ptr<State> m_state;
};

/// One connection to a repository store. This folder alone knows a dialect or a driver header. Not thread-safe, except
/// for interrupt().
class Connection {
  public:
    /// Opens a SQLite file. Errors say what is wrong with the file in a user's words: missing, a folder, no
    /// permission, not a database. A busy file is waited for as long as `busyTimeout` says.
    [[nodiscard]] static Result<std::unique_ptr<Connection>>
    openFile(const std::string& path, OpenMode mode,
             std::chrono::milliseconds busyTimeout = std::chrono::milliseconds(5000));
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// From now on a busy file is waited for as long as `mayWait`, asked some twenty times a second, says so.
    void waitWhile(std::function<bool()> mayWait);

    /// From now on running statements ask `mayGoOn` now and then, and fail with "interrupted" when it says no. Empty:
    /// ask nobody.
    void goOnWhile(std::function<bool()> mayGoOn);

    /// Runs a script of statements without parameters.
    [[nodiscard]] Status execute(const std::string& script);
    /// A statement from the pool, parsed only when this text was not prepared before.
    [[nodiscard]] Result<Statement> prepare(std::string_view sql);
    /// The first column of the first row of a statement without parameters; an error when it has no row.
    [[nodiscard]] Result<std::int64_t> queryInteger(std::string_view sql);

    /// Who made the store (0: nobody said) and which version of their schema it has.
    [[nodiscard]] Result<std::int64_t> applicationId() { return queryInteger("PRAGMA application_id"); }
    [[nodiscard]] Result<std::int64_t> schemaVersion() { return queryInteger("PRAGMA user_version"); }
    /// To be called within the transaction that makes or changes the schema.
    [[nodiscard]] Status setApplicationId(std::int32_t id);
    [[nodiscard]] Status setSchemaVersion(std::int32_t version);
    /// Whether there is no table, view or index at all.
    [[nodiscard]] Result<bool> isEmpty();
    /// Lets readers and a writer work at once from now on; kept in the file.
    [[nodiscard]] Status enableConcurrency();
    /// How many bytes of changed pages a transaction may hold back. A page that has to be written before the end and is
    /// changed once more makes the commit read everything again that was written after it.
    [[nodiscard]] Status setCacheSize(std::size_t bytes);
    /// Gives at most `pages` unused pages back to the file system. True when there are more.
    [[nodiscard]] Result<bool> freeSpace(int pages);
    /// Moves what was written into the main file, if no reader stands in the way.
    void checkpoint();

    /// Reads the whole file and says what is wrong with it, at most so many things; nothing when it is sound.
    [[nodiscard]] Result<std::vector<std::string>> findDamage(int atMost);

    /// The id that the next row of a table gets whose ids are never given twice; within a transaction that writes.
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

/// As long as it lives, all that is read is of one moment. Within a transaction it changes nothing.
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

/// Begins at once for writing; rolls back on destruction unless committed.
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
