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

/// A table or query of a database, found and described.
struct OpenedDatabaseTable {
    source::OdbcConnection* connection = nullptr; ///< belongs to the Databases
    source::DatabaseTable table;
};

/// The connections of a run to the databases of its job: one for each, made when it is needed first.
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

/// Why the rows of a table of a database are read instead of letting its engine count; nothing when it counts.
[[nodiscard]] std::optional<std::string>
whyRowsAreRead(const job::JobDescription& job, const job::TableDescription& table, const source::DatabaseTable& found);

/// What a run says of where a table comes from; `base` is the table itself or the one that it filters.
void addDatabaseFacts(repository::TableFacts& facts, const job::TableDescription& table,
                      const job::TableDescription& base, const OpenedDatabaseTable& opened);
/// What the catalogue declares of a field.
void addDeclaration(repository::FieldFacts& facts, const source::DeclaredColumn& column);

/// What a run would ask of a table's source.
struct TableExplanation {
    std::string table;
    std::string source;
    std::vector<std::string> statements; ///< none for a table that comes from no database
    std::string reason;                  ///< why rows are read; empty when the engine counts
};

/// Connects and looks into the catalogues, and reads no rows.
[[nodiscard]] Result<std::vector<TableExplanation>> explainJob(const job::JobDescription& job,
                                                               source::AskCredentials ask);

} // namespace tavix::profiling
