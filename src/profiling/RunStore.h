#pragma once

#include "base/HeldRepositories.h"
#include "base/Result.h"
#include "profiling/DistributionQueue.h"
#include "profiling/FieldProfile.h"
#include "profiling/OpenedSource.h"
#include "profiling/RepositoryOpening.h"
#include "profiling/RunReporter.h"
#include "profiling/TablePass.h"
#include "repository/FileOffsetIndex.h"
#include "repository/RunWriter.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace tavix::profiling {

/// A table that was read, with its profiles once they are computed.
struct FinishedTable {
    std::shared_ptr<const std::vector<std::string>> columns; ///< the pass refers to them
    std::unique_ptr<TablePass> pass;
    TableReport report;
    std::optional<repository::FileOffsetIndex> offsetIndex;
    std::vector<FieldProfile> fields;
    std::optional<int> id; ///< in the repository, once the table was added there
};

/// Stores the tables of a run. They wait until the last one was read, or until their metrics take too much memory; then
/// one transaction begins that stores them all.
class RunStore {
  public:
    /// The arguments passed by reference must outlive the store.
    RunStore(std::string repositoryPath, repository::RunDescription run, RunReporter& reporter, StopSignal& stop);

    /// Begins to open the repository: whether it can be written is better known before hours of reading than after.
    void open() { m_repository.emplace(m_path); }
    /// Why it cannot be opened, once that is known.
    [[nodiscard]] std::optional<Error> failure() const;

    void add(FinishedTable table);
    /// About the bytes that the metrics of the waiting tables take, without packed distributions.
    [[nodiscard]] std::size_t waitingSize() const { return m_waitingSize; }
    /// Begins the transaction if needed and stores the waiting tables. Appends to `outcomes`.
    [[nodiscard]] Status storeWaiting(std::vector<TableOutcome>& outcomes);

    /// Compares the fields of the stored tables with each other, and stores what it finds.
    [[nodiscard]] Status storeDifferences();

    /// For storing distributions while a table is profiled: begins the transaction and adds the table. The
    /// distributions of the waiting tables are in the queue already.
    [[nodiscard]] Result<std::unique_ptr<DistributionQueue>> storeAlong(FinishedTable& table);

    /// Valid once something was stored.
    [[nodiscard]] repository::RunWriter& writer() { return *m_writer; }

  private:
    Status begin();
    Status beginTable(FinishedTable& table);
    Status storeDistributions();
    Status store(FinishedTable& table);
    Status storeField(const FinishedTable& table, FieldProfile& field, const repository::EarlierField* before);
    Status storeDamage(const FinishedTable& table);

    const std::string m_path;
    const HeldRepository m_held; ///< marked as held before the opening thread starts
    const repository::RunDescription m_run;
    RunReporter& m_reporter;
    StopSignal& m_stop;
    std::vector<FinishedTable> m_waiting;
    std::size_t m_waitingSize = 0;
    std::vector<int> m_tableOfField;                 ///< ids, for each of m_summaries
    std::vector<findings::FieldSummary> m_summaries; ///< of the stored fields
    /// Kept open, because the last connection to close tidies the repository, which takes as long as a small table.
    std::optional<RepositoryOpening> m_repository;
    std::unique_ptr<repository::RunWriter> m_writer;
};

} // namespace tavix::profiling
