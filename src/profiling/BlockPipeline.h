#pragma once

#include "profiling/StopSignal.h"
#include "profiling/TablePass.h"
#include "source/RowReader.h"

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <vector>

namespace tavix::profiling {

using TablePasses = std::vector<std::unique_ptr<TablePass>>;

/// Blocks on their way from a reader through the passes over its table. Every column takes them one after the other,
/// but one column may be ahead of another, so that threads rarely wait for each other.
class BlockPipeline {
  public:
    /// Up to `blocks` are on their way at once. `parts`: of the values of each column.
    /// `stop` also ends a step that is under way.
    BlockPipeline(const TablePasses& passes, std::size_t blocks, std::uint32_t parts, StopSignal& stop);

    /// For the thread that reads: a block to fill; until one is free the caller takes part in the work. What a thread
    /// threw comes out here or of finish(), and then nothing is counted any more.
    [[nodiscard]] source::RowBlock& free();
    /// The block that free() gave was filled and goes on its way.
    void send();
    /// Takes part until all blocks that were sent are counted.
    void finish();

    /// For the other threads: takes part until close(). A line that was opened anew takes help again.
    void help();
    void open();
    void close();

    struct Memory {
        std::size_t values = 0; ///< bytes
        std::size_t offsetIndex = 0;
    };
    /// Of the columns, as each had it after its last block, or when measure() was called, while none was on its way.
    [[nodiscard]] Memory memory() const;
    void measure();

  private:
    struct Slot {
        source::RowBlock block;
        std::int64_t firstRecord = 1;
        std::size_t queuesLeft = 0; ///< that have not counted it yet
    };
    /// Columns that are counted together, or a part of the values of one.
    struct ColumnQueue {
        std::size_t firstColumn = 0;
        std::size_t endColumn = 0;
        std::uint32_t part = 0;
        std::size_t counted = 0; ///< blocks
        bool isBusy = false;
        Memory memory;
    };
    struct TableQueues {
        TablePass* pass = nullptr;
        std::size_t prepared = 0; ///< blocks
        bool isBusy = false;
        std::vector<ColumnQueue> columns;
    };
    /// What a thread can do next: a queue that counts, or without one the preparing.
    struct Step {
        TableQueues* table = nullptr;
        ColumnQueue* queue = nullptr;
    };
    using Lock = std::unique_lock<std::mutex>;

    [[nodiscard]] Slot& slot(std::size_t number) { return m_slots[number % m_slots.size()]; }
    [[nodiscard]] static Memory memoryOf(const TableQueues& table, const ColumnQueue& queue);
    [[nodiscard]] bool canPrepare(const TableQueues& table);
    [[nodiscard]] Step next();
    /// False when there is nothing to do at present.
    bool work(Lock& lock);
    void workUntilCounted(Lock& lock, const Slot& waited);

    StopSignal& m_stop;
    std::vector<Slot> m_slots;
    std::vector<TableQueues> m_tables;
    std::size_t m_queueCount = 0;
    std::size_t m_sent = 0; ///< blocks
    std::int64_t m_nextRecord = 1;
    bool m_isClosed = false;
    std::exception_ptr m_failure;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
};

} // namespace tavix::profiling
