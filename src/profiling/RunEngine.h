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
#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace tavix::profiling {

/// The parts of a run that are done in parallel: counting the columns of the tables that share a source, and profiling
/// columns. Stays within the memory of the run by spilling counted values to a temporary file.
class RunEngine {
  public:
    struct Settings {
        unsigned threads = 1;
        std::size_t memory = 0; ///< bytes
        std::string spillFolder;
        std::int64_t now = 0; ///< the moment of the run, in units of base/DateTicks.h
    };
    /// `poll` is called often, by the thread that makes the engine, while it works; false stops the work.
    RunEngine(const Settings& settings, std::function<bool()> poll);

    /// Counts all rows of the source for all passes. Calls `took(rows)` for each block.
    [[nodiscard]] Status count(source::RowReader& reader, const TablePasses& passes,
                               const std::function<void(std::size_t)>& took);
    /// For values that are not counted by count(): call it often while the columns grow.
    [[nodiscard]] Status spillWhatIsTooMuch(TablePass& pass);
    /// Removes all values from the columns, in memory and in the file.
    void forget(TablePass& pass);
    /// What else is done while the fields are profiled. A failure ends the profiling.
    struct Along {
        std::function<Status()> work{};               ///< called once, by any thread
        std::function<Status(FieldProfile&)> ready{}; ///< called for each column by the thread that profiled it
    };
    /// Profiles every column of the pass and uses up the counted values. Fails with StopSignal::stopped() when it was
    /// stopped.
    [[nodiscard]] Result<std::vector<FieldProfile>> figures(TablePass& pass, const Along& along);
    [[nodiscard]] Result<std::vector<FieldProfile>> figures(TablePass& pass) { return figures(pass, {}); }

    [[nodiscard]] StopSignal& stop() { return m_stop; }
    [[nodiscard]] const MemoryPlan& plan() const { return m_plan; }

  private:
    Status spillWhatIsTooMuch(std::span<ColumnValues* const> columns);
    /// Drops the largest offset indexes while all together take too much memory.
    void dropLargestOffsetIndexes(std::span<ColumnValues* const> columns) const;
    /// Runs task(i) for every i below `count` on all threads. Fails with the first failure, or when it was stopped.
    Status divide(std::size_t count, const TaskBatch::Task& task);

    std::int64_t m_now;
    StopSignal m_stop;
    MemoryPlan m_plan;
    SpillFile m_file;
    ByteStore m_store;
    MemoryGate m_gate;
    WorkerPool m_pool;
};

} // namespace tavix::profiling
