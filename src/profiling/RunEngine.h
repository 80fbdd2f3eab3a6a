#pragma once

#include "base/Result.h"
#include "profiling/BlockPipeline.h"
#include "profiling/ByteStore.h"
#include "profiling/FieldProfile.h"
#include "profiling/MemoryPlan.h"
#include "profiling/SpillFile.h"
#include "profiling/StopSignal.h"
#include "profiling/TablePass.h"
#include "profiling/WorkerPool.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tavix::profiling {

/// The work of a run that can be divided: counting the columns of the tables that share a source, and computing the
/// figures of columns. It keeps within the memory of the run by moving counted values to a temporary file.
class RunEngine {
  public:
    struct Settings {
        unsigned threads = 1;
        std::size_t memory = 0; ///< bytes
        std::string spillFolder;
    };
    /// `poll` is called by the thread that makes the engine, often, while it works; false stops the work.
    RunEngine(const Settings& settings, std::function<bool()> poll);

    /// Counts all rows of the source for all passes. `took(rows)` is called with each block.
    [[nodiscard]] Status count(source::RowReader& reader, const TablePasses& passes,
                               const std::function<void(std::size_t)>& took);
    /// For values that are counted by other means than count(): to be called often, while the columns grow.
    [[nodiscard]] Status spillWhatIsTooMuch(TablePass& pass);
    /// Leaves no value in the columns, wherever it lies.
    void forget(TablePass& pass);
    /// What else is done while figures are computed. A failure ends the computing.
    struct Along {
        std::function<Status()> work{};               ///< once, by any thread
        std::function<Status(FieldProfile&)> ready{}; ///< for each column, by the thread that computed it, at once
    };
    /// The figures of every column of the pass, whose counted values are used up. With StopSignal::stopped() it fails
    /// when it was stopped.
    [[nodiscard]] Result<std::vector<FieldProfile>> figures(TablePass& pass, const Along& along);
    [[nodiscard]] Result<std::vector<FieldProfile>> figures(TablePass& pass) { return figures(pass, {}); }

    [[nodiscard]] StopSignal& stop() { return m_stop; }
    [[nodiscard]] const MemoryPlan& plan() const { return m_plan; }

  private:
    Status spillWhatIsTooMuch(std::span<ColumnValues* const> columns);
    /// Gives up the places of the columns that take most of the memory, when all take too much.
    void dropLargestOffsetIndexes(std::span<ColumnValues* const> columns) const;
    /// Calls work(i) for every i below `count` by all threads, until one fails.
    Status divide(std::size_t count, const std::function<Status(std::size_t)>& work);

    StopSignal m_stop;
    MemoryPlan m_plan;
    SpillFile m_file;
    ByteStore m_store;
    MemoryGate m_gate;
    WorkerPool m_pool;
};

} // namespace tavix::profiling
