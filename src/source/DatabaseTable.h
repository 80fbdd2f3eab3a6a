#pragma once

#include "base/Result.h"
#include "source/DeclaredColumn.h"
#include "source/OdbcConnection.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavix::source {

/// What is to be read of a database: a table or view, or the rows of a query.
struct TableRequest {
    std::string catalog{}; ///< empty: whichever has the table
    std::string schema{};
    std::string table{};
    std::string query{}; ///< in place of the others

    [[nodiscard]] bool isQuery() const { return !query.empty(); }
    bool operator==(const TableRequest&) const = default;
};

/// SQL and the texts that stand for its question marks.
struct SqlText {
    std::string sql;
    std::vector<std::optional<std::string>> parameters{};
};

/// A table or query of a connection, as its catalogue describes it, and the statements that read it. Every value is
/// read as a text: as the engine writes it, where its dialect can be asked for that, else as the driver does.
class DatabaseTable {
  public:
    /// An error for a table that is not there (with the names of similar ones), one that stands in several schemas, and
    /// a query that is not understood.
    [[nodiscard]] static Result<DatabaseTable> resolve(const OdbcConnection& connection, const TableRequest& request);

    [[nodiscard]] const TableRequest& address() const { return m_address; } ///< with the catalog and schema found
    [[nodiscard]] std::span<const DeclaredColumn> columns() const { return m_columns; }
    /// As the catalogue has them; of a query each is made different from those before it, as in a text file.
    [[nodiscard]] std::span<const std::string> columnNames() const { return m_names; }

    [[nodiscard]] SqlText rows() const;
    /// Two columns: each value of the column and the number of rows that hold it.
    [[nodiscard]] SqlText counts(std::size_t column) const;
    /// Why the engine cannot do that with the outcome that reading the rows has; nothing when it can.
    [[nodiscard]] std::optional<std::string> whyNotCounted() const;
    /// The rows that hold the value; where the engine can be told so up to `limit` of them, if that is not 0. An engine
    /// without a text form may give more rows than those: whoever reads compares again.
    [[nodiscard]] SqlText matches(std::size_t column, const std::optional<std::string>& value,
                                  std::size_t limit = 0) const;

  private:
    explicit DatabaseTable(const OdbcConnection& connection) : m_connection(&connection) {}
    Status resolveTable();
    Status resolveQuery();
    [[nodiscard]] std::string selectedTexts() const;
    /// The rows as a statement reads them: what stands in front of SELECT, and behind FROM.
    [[nodiscard]] std::string intro() const;

    const OdbcConnection* m_connection;
    TableRequest m_address;
    std::string m_from;                ///< the table's quoted name, or the query's place
    std::vector<std::string> m_quoted; ///< the columns' names in SQL
    std::vector<DeclaredColumn> m_columns;
    std::vector<std::string> m_names;
};

} // namespace tavix::source
