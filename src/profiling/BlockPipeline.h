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

/// Passes blocks from a reader through the passes over its table. Each column takes the blocks in order, but columns
/// need not be at the same block, so threads rarely wait for each other.
class BlockPipeline {
  public:
    /// Holds up to `blocks` blocks. `parts`: how many parts the values of each column are counted in. `stop` also ends
    /// a step that is running.
    BlockPipeline(const TablePasses& passes, std::size_t blocks, std::uint32_t parts, StopSignal& stop);

    /// For the reading thread: a block to fill. Takes part in the work until one is free. Rethrows what any thread
    /// threw, as finish() does; nothing is counted after that.
    [[nodiscard]] source::RowBlock& free();
    /// Sends the block that free() gave, once it is filled.
    void send();
    /// Takes part until all blocks are counted.
    void finish();

    /// For the other threads: takes part until close(). open() makes help() possible again.
    void help();
    void open();
    void close();

    struct Memory {
        std::size_t values = 0; ///< bytes
        std::size_t offsetIndex = 0;
    };
    /// Of each column after its last block, or at the last measure(), which may be called only while no block is in the
    /// pipeline.
    [[nodiscard]] Memory memory() const;
    void measure();

  private:
    struct Slot {
        source::RowBlock block;
        std::int64_t firstRecord = 1;
        std::size_t queuesLeft = 0; ///< that have not counted it yet
    };
    /// Columns that are counted together, or a part of one column's values, and how far they are.
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
    /// What a thread can do next: count for a queue, or prepare a block when there is no queue.
    struct Step {
        TableQueues* table = nullptr;
        ColumnQueue* queue = nullptr;
    };
    using Lock = std::unique_lock<std::mutex>;

    [[nodiscard]] Slot& slot(std::size_t number) { return m_slots[number % m_slots.size()]; }
    [[nodiscard]] static Memory memoryOf(const TableQueues& table, const ColumnQueue& queue);
    [[nodiscard]] bool canPrepare(const TableQueues& table);
    [[nodiscard]] Step next();
    /// False when there is nothing to do now.
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
