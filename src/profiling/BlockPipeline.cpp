#include "profiling/BlockPipeline.h"

#include <algorithm>

namespace tavix::profiling {

namespace {

/// More would be steps so small that handing them out costs more than doing them.
constexpr std::size_t kMostQueues = 64;

} // namespace

BlockPipeline::BlockPipeline(const TablePasses& passes, std::size_t blocks, std::uint32_t parts, StopSignal& stop)
    : m_stop(stop), m_slots(blocks) {
    for (const auto& pass : passes) {
        TableQueues& table = m_tables.emplace_back();
        table.pass = pass.get();
        const std::size_t columns = pass->columns().size();
        const std::size_t groups = std::min(columns, kMostQueues);
        for (std::size_t group = 0; group < groups; ++group)
            for (std::uint32_t part = 0; part < parts; ++part) {
                ColumnQueue& queue = table.columns.emplace_back();
                queue.firstColumn = group * columns / groups;
                queue.endColumn = (group + 1) * columns / groups;
                queue.part = part;
            }
        m_queueCount += table.columns.size();
    }
}

source::RowBlock& BlockPipeline::free() {
    Lock lock(m_mutex);
    Slot& following = slot(m_sent);
    workUntilCounted(lock, following);
    return following.block;
}

void BlockPipeline::send() {
    {
        const Lock lock(m_mutex);
        Slot& filled = slot(m_sent);
        filled.firstRecord = m_nextRecord;
        filled.queuesLeft = m_queueCount;
        m_nextRecord += static_cast<std::int64_t>(filled.block.rows);
        ++m_sent;
    }
    m_changed.notify_all();
}

void BlockPipeline::finish() {
    Lock lock(m_mutex);
    for (const Slot& onItsWay : m_slots)
        workUntilCounted(lock, onItsWay);
}

void BlockPipeline::help() {
    Lock lock(m_mutex);
    while (!m_isClosed)
        if (!work(lock))
            m_changed.wait(lock);
}

void BlockPipeline::open() {
    const Lock lock(m_mutex);
    m_isClosed = false;
}

void BlockPipeline::close() {
    {
        const Lock lock(m_mutex);
        m_isClosed = true;
    }
    m_changed.notify_all();
}

BlockPipeline::Memory BlockPipeline::memoryOf(const TableQueues& table, const ColumnQueue& queue) {
    Memory memory;
    for (std::size_t column = queue.firstColumn; column < queue.endColumn; ++column) {
        const ColumnValues& values = table.pass->values(column);
        memory.values += values.memory(queue.part);
        memory.offsetIndex += values.offsetIndexMemory(queue.part);
    }
    return memory;
}

BlockPipeline::Memory BlockPipeline::memory() const {
    const Lock lock(m_mutex);
    Memory sum;
    for (const TableQueues& table : m_tables)
        for (const ColumnQueue& queue : table.columns) {
            sum.values += queue.memory.values;
            sum.offsetIndex += queue.memory.offsetIndex;
        }
    return sum;
}

void BlockPipeline::measure() {
    const Lock lock(m_mutex);
    for (TableQueues& table : m_tables)
        for (ColumnQueue& queue : table.columns)
            queue.memory = memoryOf(table, queue);
}

void BlockPipeline::workUntilCounted(Lock& lock, const Slot& waited) {
    for (;;) {
        if (m_failure)
            std::rethrow_exception(m_failure);
        if (waited.queuesLeft == 0)
            return;
        if (!work(lock) && m_changed.wait_for(lock, kBetweenPolls) == std::cv_status::timeout)
            (void)m_stop.isStopped(); // another thread may still be counting a large block
    }
}

bool BlockPipeline::canPrepare(const TableQueues& table) {
    if (table.isBusy || table.prepared == m_sent)
        return false;
    // When preparing changes what counting reads, the block before must be counted first.
    return !table.pass->preparingDisturbs(slot(table.prepared).block) ||
           std::all_of(table.columns.begin(), table.columns.end(),
                       [&](const ColumnQueue& queue) { return queue.counted == table.prepared; });
}

BlockPipeline::Step BlockPipeline::next() {
    Step best;
    std::size_t block = m_sent; // the reader waits for the oldest block
    for (TableQueues& table : m_tables) {
        for (ColumnQueue& queue : table.columns)
            if (!queue.isBusy && queue.counted < std::min(table.prepared, block)) {
                best = {&table, &queue};
                block = queue.counted;
            }
        if (table.prepared < block && canPrepare(table)) {
            best = {&table, nullptr};
            block = table.prepared;
        }
    }
    return best;
}

bool BlockPipeline::work(Lock& lock) {
    const auto [table, queue] = m_failure ? Step{} : next();
    if (!table)
        return false;
    bool& isBusy = queue ? queue->isBusy : table->isBusy;
    std::size_t& done = queue ? queue->counted : table->prepared;
    Slot& taken = slot(done);
    Memory memory;
    std::exception_ptr failure;
    isBusy = true;
    lock.unlock();
    try {
        if (queue) {
            for (std::size_t column = queue->firstColumn; column < queue->endColumn; ++column)
                table->pass->countColumn(taken.block, column, queue->part);
            memory = memoryOf(*table, *queue);
        } else {
            table->pass->prepare(taken.block, taken.firstRecord, [this] { return !m_stop.isStopped(); });
        }
    } catch (...) {
        failure = std::current_exception();
    }
    lock.lock();
    isBusy = false;
    if (failure) {
        m_failure = failure;
    } else {
        ++done;
        if (queue) {
            queue->memory = memory;
            --taken.queuesLeft;
        }
    }
    m_changed.notify_all();
    return true;
}

} // namespace tavix::profiling
