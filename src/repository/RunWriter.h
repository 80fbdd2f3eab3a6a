#pragma once

#include "base/Result.h"
#include "repository/AlertFacts.h"
#include "repository/Facts.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace tavix::repository {

struct RunDescription {
    std::string job;            ///< name; the job is made when the repository has none of this name
    std::string jobDescription; ///< kept when not empty
    std::string description;    ///< of this run
    UtcTime started{};
    /// Tells when the lines of the execution log were written; the system's when null.
    const Clock* clock = nullptr;
    /// Bytes of memory that the transaction may take; 0: as much as any writer.
    std::size_t memory = 0;
    /// Asked some twenty times a second while another program writes; empty: wait 5 seconds.
    std::function<bool()> mayWait{};
};

/// Writes one run of a job. Everything happens in one transaction: until commit() succeeds nobody sees any of it, and
/// when the process dies before that the repository is as if the run had never begun. Any failing call ends the run:
/// what follows fails too, and nothing is kept.
class RunWriter {
  public:
    /// Opens or makes the repository at `path` and begins. Another writer is waited for; then it is an error.
    [[nodiscard]] static Result<std::unique_ptr<RunWriter>> begin(const std::string& path,
                                                                  const RunDescription& description);
    /// Rolls back unless committed.
    ~RunWriter();
    RunWriter(const RunWriter&) = delete;
    RunWriter& operator=(const RunWriter&) = delete;

    [[nodiscard]] int runId() const;
    /// Once the run is committed.
    [[nodiscard]] int jobId() const;

    // What is written twice within a transaction costs much once it does not fit the memory any more. So large things
    // had better come before small ones, and the rows of the run and of its tables come last of all.

    /// Begins a table; its fields follow by addField. Returns the table's id.
    [[nodiscard]] Result<int> addTable(const TableFacts& table);
    /// Lets these fields, when they are new, have their ids in this order, whatever order they are added in.
    [[nodiscard]] Status nameFields(int tableId, std::span<const std::string> names);
    /// Stores the distributions of a field ahead of addField(), which is to be given the same `packed` then.
    [[nodiscard]] Status addDistributions(int tableId, std::string_view field, PackedField& packed);
    [[nodiscard]] Status addField(int tableId, const FieldFacts& field);
    /// The fields that these read must have been added. Names are unique within the table.
    [[nodiscard]] Status addCustomMetric(int tableId, const CustomMetricFacts& metric);
    [[nodiscard]] Status addBusinessRule(int tableId, const BusinessRuleFacts& rule);
    /// A line of the run's execution log; `tableId` 0 for the run as a whole.
    [[nodiscard]] Status addLog(int tableId, LogLevel level, std::string_view text);
    /// Makes the collection or adds to the one of this name; its fields must stand in tables of this run.
    [[nodiscard]] Status addCollection(const CollectionFacts& collection);
    /// Puts these in the place of the alerts that the job had. What they watch must stand in this run.
    [[nodiscard]] Status setAlerts(std::span<const AlertFacts> alerts);

    [[nodiscard]] Status commit(UtcTime finished);

  private:
    struct Impl;
    explicit RunWriter(std::unique_ptr<Impl> impl);
    std::unique_ptr<Impl> m_impl;
};

} // namespace tavix::repository
