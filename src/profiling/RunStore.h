#pragma once

#include "base/HeldRepositories.h"
#include "base/Result.h"
#include "profiling/DistributionQueue.h"
#include "profiling/FieldFigures.h"
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

/// A table that was read, and its figures once they are computed.
struct FinishedTable {
    std::shared_ptr<const std::vector<std::string>> columns; ///< borrowed by the pass
    std::unique_ptr<TablePass> pass;
    TableReport report;
    std::optional<repository::FileOffsetIndex> places;
    std::vector<FieldFigures> fields;
    std::optional<int> id; ///< in the repository, once the table is begun there
};

/// The tables of a run on their way into its repository. They wait here until the last one was read, or until their
/// figures take too much memory; then begins the one transaction that stores them all.
class RunStore {
  public:
    /// What is passed by reference must outlive the store.
    RunStore(std::string repositoryPath, repository::RunDescription run, RunReporter& reporter, StopSignal& stop);

    /// Begins to open the repository. Whether it can be written is better known before hours of reading than after.
    void open() { m_repository.emplace(m_path); }
    /// Why it cannot be opened, as soon as that is known.
    [[nodiscard]] std::optional<Error> failure() const;

    void add(FinishedTable table);
    /// About the bytes of memory that the figures of the waiting tables take, what is packed not among them.
    [[nodiscard]] std::size_t waitingSize() const { return m_waitingSize; }
    /// Begins the transaction, unless it was begun, and stores what waits. Appends to `outcomes`.
    [[nodiscard]] Status storeWaiting(std::vector<TableOutcome>& outcomes);

    /// For storing distributions while the figures of a table are computed that are not there yet: begins the
    /// transaction and the table. What waits already is in the queue.
    [[nodiscard]] Result<std::unique_ptr<DistributionQueue>> storeAlong(FinishedTable& table);

    /// Once something was stored.
    [[nodiscard]] repository::RunWriter& writer() { return *m_writer; }

  private:
    Status begin();
    Status beginTable(FinishedTable& table);
    Status storeDistributions();
    Status store(FinishedTable& table);

    const std::string m_path;
    const HeldRepository m_held; ///< from before the thread that opens it does
    const repository::RunDescription m_run;
    RunReporter& m_reporter;
    StopSignal& m_stop;
    std::vector<FinishedTable> m_waiting;
    std::size_t m_waitingSize = 0;
    /// Kept, for the last one that closes a repository has to tidy it, and that takes as long as a small table.
    std::optional<RepositoryOpening> m_repository;
    std::unique_ptr<repository::RunWriter> m_writer;
};

} // namespace tavix::profiling
