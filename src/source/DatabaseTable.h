#pragma once

#include "base/Result.h"
#include "source/DeclaredColumn.h"
#include "source/OdbcConnection.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavix::source {

/// What to read from a database: a table or view, or the rows of a query.
struct TableRequest {
    std::string catalog{}; ///< empty: any that has the table
    std::string schema{};
    std::string table{};
    std::string query{}; ///< instead of the others

    [[nodiscard]] bool isQuery() const { return !query.empty(); }
    bool operator==(const TableRequest&) const = default;
};

/// SQL and the texts of its parameters, in order.
struct SqlText {
    std::string sql;
    std::vector<std::optional<std::string>> parameters{};
};

/// A table or query of a connection, as its catalogue describes it, and the statements that read it. Every value is
/// read as text: as written by the engine if its dialect can be asked for that, else by the driver.
class DatabaseTable {
  public:
    /// Fails for a missing table (naming similar ones), for one that is in several schemas, and for a query that the
    /// engine rejects.
    [[nodiscard]] static Result<DatabaseTable> resolve(const OdbcConnection& connection, const TableRequest& request);

    [[nodiscard]] const TableRequest& address() const { return m_address; } ///< with the catalog and schema found
    [[nodiscard]] std::span<const DeclaredColumn> columns() const { return m_columns; }
    /// As in the catalogue; the columns of a query get distinct names, as in a text file.
    [[nodiscard]] std::span<const std::string> columnNames() const { return m_names; }

    [[nodiscard]] SqlText rows() const;
    /// Two columns: each value of the column and the number of rows that hold it.
    [[nodiscard]] SqlText counts(std::size_t column) const;
    /// Why counts() may differ from counting the rows; nothing if it cannot.
    [[nodiscard]] std::optional<std::string> whyNotCounted() const;
    /// The rows that hold the value, up to `limit` if that is not 0 and the engine supports it. An engine without a
    /// text form may return further rows, so the reader compares again.
    [[nodiscard]] SqlText matches(std::size_t column, const std::optional<std::string>& value,
                                  std::size_t limit = 0) const;

  private:
    explicit DatabaseTable(const OdbcConnection& connection) : m_connection(&connection) {}
    Status resolveTable();
    Status resolveQuery();
    [[nodiscard]] std::string selectedTexts() const;
    /// What precedes SELECT and what follows FROM in a statement that reads the rows.
    [[nodiscard]] std::string intro() const;

    const OdbcConnection* m_connection;
    TableRequest m_address;
    std::string m_from;                ///< the table's quoted name, or the name of the query's subquery
    std::vector<std::string> m_quoted; ///< the columns' names in SQL
    std::vector<DeclaredColumn> m_columns;
    std::vector<std::string> m_names;
};

} // namespace tavix::source
