#pragma once

#include "job/JobDescription.h"
#include "repository/Facts.h"
#include "source/Credentials.h"
#include "source/DatabaseTable.h"
#include "source/OdbcConnection.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavix::profiling {

/// A table or query of a database with its description.
struct OpenedDatabaseTable {
    source::OdbcConnection* connection = nullptr; ///< owned by the Databases
    source::DatabaseTable table;
};

/// The connections of a run to the databases of its job. Each is opened when it is first needed.
class Databases {
  public:
    /// The job must outlive the object.
    Databases(const job::JobDescription& job, source::AskCredentials ask) : m_job(job), m_ask(std::move(ask)) {}

    [[nodiscard]] Result<OpenedDatabaseTable> open(const job::TableDescription& table);

  private:
    const job::JobDescription& m_job;
    source::AskCredentials m_ask;
    std::map<std::string, std::unique_ptr<source::OdbcConnection>> m_connections;
};

/// Why the rows of a database table are read instead of counted by its engine; nothing when the engine counts.
[[nodiscard]] std::optional<std::string>
whyRowsAreRead(const job::JobDescription& job, const job::TableDescription& table, const source::DatabaseTable& found);

/// Describes where a table comes from. `base` is the table itself, or the table that it filters.
void addDatabaseFacts(repository::TableFacts& facts, const job::TableDescription& table,
                      const job::TableDescription& base, const OpenedDatabaseTable& opened);
/// Adds what the database declares about a field.
void addDeclaration(repository::FieldFacts& facts, const source::DeclaredColumn& column);

/// What a run would ask a table's source.
struct TableExplanation {
    std::string table;
    std::string source;
    std::vector<std::string> statements; ///< none for a table that comes from no database
    std::string reason;                  ///< why rows are read; empty when the engine counts
};

/// Connects and reads the catalogues, but no rows.
[[nodiscard]] Result<std::vector<TableExplanation>> explainJob(const job::JobDescription& job,
                                                               source::AskCredentials ask);

} // namespace tavix::profiling
