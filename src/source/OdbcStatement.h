#pragma once

#include "base/Result.h"
#include "source/Credentials.h"
#include "source/DeclaredColumn.h"
#include "source/OdbcConnection.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tavix::source {

/// A statement of a connection, which must outlive it.
class OdbcStatement {
  public:
    using Row = std::vector<std::optional<std::string>>;

    [[nodiscard]] static Result<OdbcStatement> create(const OdbcConnection& connection);
    ~OdbcStatement() { release(); }
    OdbcStatement(OdbcStatement&& other) noexcept
        : m_connection(other.m_connection), m_handle(std::exchange(other.m_handle, nullptr)) {}
    OdbcStatement& operator=(OdbcStatement&&) = delete;

    /// Makes the columns of its result available.
    [[nodiscard]] Status prepare(const std::string& sql);
    /// `parameters` are texts, or null.
    [[nodiscard]] Status execute(const std::string& sql, std::span<const std::optional<std::string>> parameters,
                                 const KeepGoing& keepGoing);
    // Catalogue functions. Names are literal, not patterns; the result may contain more than requested.
    [[nodiscard]] Status listTables();
    [[nodiscard]] Status listColumns(const std::string& catalog, const std::string& schema, const std::string& table);
    [[nodiscard]] Status listKeys(const std::string& catalog, const std::string& schema, const std::string& table);

    [[nodiscard]] Result<std::vector<DeclaredColumn>> resultColumns() const;
    /// The heading of a column of the result, from 0; empty when there is none.
    [[nodiscard]] std::string heading(std::size_t column) const;
    [[nodiscard]] std::size_t columnCount() const;
    /// The number of parameters in a prepared statement, as the driver counts them.
    [[nodiscard]] std::size_t parameterCount() const;
    /// The remaining rows of a small result, up to `limit`. Texts are cut after 32,000 bytes.
    [[nodiscard]] Result<std::vector<Row>> rows(std::size_t limit);

    /// May be called from any thread while another waits for this statement.
    void cancel() const;
    [[nodiscard]] void* handle() const { return m_handle; }
    [[nodiscard]] Error failure() const;

  private:
    explicit OdbcStatement(const OdbcConnection& connection) : m_connection(&connection) {}
    void release();
    [[nodiscard]] std::string pattern(const std::string& name) const;

    const OdbcConnection* m_connection;
    void* m_handle = nullptr;
};

/// The kind of an ODBC type code.
[[nodiscard]] DeclaredColumn::Kind kindOfType(int code);

} // namespace tavix::source
