#pragma once

#include "base/AlertDefinition.h"
#include "base/Result.h"
#include "repository/AlertFacts.h"
#include "repository/EarlierFields.h"
#include "repository/Facts.h"
#include "sql/Connection.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace tavix::repository {

struct RunDescription {
    std::string job;            ///< name; the job is created if the repository has none of this name
    std::string jobDescription; ///< empty: keeps the present one
    std::string description;    ///< of this run
    UtcTime started{};
    /// Gives the times in the execution log; null: the system's clock.
    const Clock* clock = nullptr;
    /// Bytes of memory that the transaction may take; 0: the default of any writer.
    std::size_t memory = 0;
    /// Whether it looked for types and findings, so that none means none.
    bool isExamined = false;
    /// Whether its conditions compare values of fields as numbers or dates where they are such; if `isExamined`.
    bool hasTypedExpressions = false;
    /// Asked some twenty times a second while another program writes; empty: wait at most 5 seconds.
    std::function<bool()> mayWait{};
};

/// Writes one run of a job in one transaction: nothing is visible until commit() succeeds, and if the process dies
/// before that, the repository is unchanged. A call that fails ends the run: later calls fail too, and nothing is kept.
class RunWriter {
  public:
    /// Opens or creates the repository at `path` and begins. Waits for another writer, then fails.
    [[nodiscard]] static Result<std::unique_ptr<RunWriter>> begin(const std::string& path,
                                                                  const RunDescription& description);
    /// Rolls back unless committed.
    ~RunWriter();
    RunWriter(const RunWriter&) = delete;
    RunWriter& operator=(const RunWriter&) = delete;

    [[nodiscard]] int runId() const { return m_run; }
    /// Known once the run is committed.
    [[nodiscard]] int jobId() const { return m_job; }

    // A page that is written twice within a transaction is expensive once the transaction exceeds the memory. So add
    // large things before small ones; commit() writes the rows of the run and of its tables last.

    /// Begins a table; its fields follow by addField. Returns the table's id.
    [[nodiscard]] Result<int> addTable(const TableFacts& table);
    /// Gives new fields among these their ids in this order, whatever order they are added in.
    [[nodiscard]] Status nameFields(int tableId, std::span<const std::string> names);
    /// The fields of the table in the last run of the job that has it, by name.
    [[nodiscard]] Result<std::map<std::string, EarlierField, std::less<>>> earlierFields(int tableId);
    /// Stores the distributions of a field before addField(), which must then be given the same `packed`.
    [[nodiscard]] Status addDistributions(int tableId, std::string_view field, PackedField& packed);
    [[nodiscard]] Status addField(int tableId, const FieldFacts& field);
    /// The fields that it reads must have been added. Names are unique within the table.
    [[nodiscard]] Status addCustomMetric(int tableId, const CustomMetricFacts& metric);
    [[nodiscard]] Status addBusinessRule(int tableId, const BusinessRuleFacts& rule);
    /// A finding about a field, or with an empty name about the table; at most one for each code. addField() stores
    /// those of FieldFacts.
    [[nodiscard]] Status addFinding(int tableId, std::string_view field, const FindingFacts& finding);
    /// A line of the run's execution log; `tableId` 0 for the run as a whole.
    [[nodiscard]] Status addLog(int tableId, LogLevel level, std::string_view text);
    /// Creates the collection or adds to the one of this name; its fields must be in tables of this run.
    [[nodiscard]] Status addCollection(const CollectionFacts& collection);
    /// Replaces the alerts that the job defines, see replaceAlerts(); those of users stay. What they watch must be in
    /// this run.
    [[nodiscard]] Status setAlerts(std::span<const AlertFacts> alerts);

    [[nodiscard]] Status commit(UtcTime finished);

  private:
    struct Table {
        TableFacts facts; ///< with borrowed pointers cleared
        int position = 0; ///< from 1
        int fields = 0;
        int metrics = 0;
        int rules = 0;
    };

    explicit RunWriter(const RunDescription& description);
    /// Runs a step of a run that has not ended; a failed one ends the run.
    template <typename Step>
    auto attempt(Step step) -> decltype(step());
    [[nodiscard]] const Clock& clock() const;
    [[nodiscard]] Result<int> findField(const FieldAddress& address);
    [[nodiscard]] Result<AlertDefinition> locate(const AlertFacts& facts);
    [[nodiscard]] Status findJob();
    [[nodiscard]] Status storeTables();

    RunDescription m_description;
    std::unique_ptr<sql::Connection> m_connection;
    std::optional<sql::Transaction> m_transaction; ///< empty once the run has ended, one way or the other
    int m_run = -1;
    int m_job = -1;
    int m_logLines = 0;
    std::map<int, Table> m_tables; ///< by id
};

} // namespace tavix::repository
