#include "profiling/BlockLine.h"

#include <algorithm>

namespace tavix::profiling {

namespace {

/// Of a pass without parts; more would be small steps that cost more to hand out than to do.
constexpr std::size_t kMostLanes = 64;

} // namespace

BlockLine::BlockLine(const TablePasses& passes, std::size_t blocks, std::uint32_t parts, StopSignal& stop)
    : m_stop(stop), m_slots(blocks) {
    for (const auto& pass : passes) {
        Passage& passage = m_passages.emplace_back();
        passage.pass = pass.get();
        const std::size_t columns = pass->columns().size();
        const std::size_t groups = std::min(columns, kMostLanes);
        for (std::size_t group = 0; group < groups; ++group)
            for (std::uint32_t part = 0; part < parts; ++part) {
                Lane& lane = passage.lanes.emplace_back();
                lane.firstColumn = group * columns / groups;
                lane.endColumn = (group + 1) * columns / groups;
                lane.part = part;
            }
        m_lanes += passage.lanes.size();
    }
}

source::RowBlock& BlockLine::free() {
    Lock lock(m_mutex);
    Slot& following = slot(m_sent);
    workUntilCounted(lock, following);
    return following.block;
}

void BlockLine::send() {
    {
        const Lock lock(m_mutex);
        Slot& filled = slot(m_sent);
        filled.firstRecord = m_nextRecord;
        filled.lanesLeft = m_lanes;
        m_nextRecord += static_cast<std::int64_t>(filled.block.rows);
        ++m_sent;
    }
    m_changed.notify_all();
}

void BlockLine::finish() {
    Lock lock(m_mutex);
    for (const Slot& onItsWay : m_slots)
        workUntilCounted(lock, onItsWay);
}

void BlockLine::help() {
    Lock lock(m_mutex);
    while (!m_isClosed)
        if (!work(lock))
            m_changed.wait(lock);
}

void BlockLine::open() {
    const Lock lock(m_mutex);
    m_isClosed = false;
}

void BlockLine::close() {
    {
        const Lock lock(m_mutex);
        m_isClosed = true;
    }
    m_changed.notify_all();
}

BlockLine::Memory BlockLine::memoryOf(const Passage& passage, const Lane& lane) {
    Memory memory;
    for (std::size_t column = lane.firstColumn; column < lane.endColumn; ++column) {
        const ColumnValues& values = passage.pass->values(column);
        memory.values += values.memory(lane.part);
        memory.places += values.placesMemory(lane.part);
    }
    return memory;
}

BlockLine::Memory BlockLine::memory() const {
    const Lock lock(m_mutex);
    Memory sum;
    for (const Passage& passage : m_passages)
        for (const Lane& lane : passage.lanes) {
            sum.values += lane.memory.values;
            sum.places += lane.memory.places;
        }
    return sum;
}

void BlockLine::measure() {
    const Lock lock(m_mutex);
    for (Passage& passage : m_passages)
        for (Lane& lane : passage.lanes)
            lane.memory = memoryOf(passage, lane);
}

void BlockLine::workUntilCounted(Lock& lock, const Slot& waited) {
    for (;;) {
        if (m_failure)
            std::rethrow_exception(m_failure);
        if (waited.lanesLeft == 0)
            return;
        if (!work(lock) && m_changed.wait_for(lock, kBetweenPolls) == std::cv_status::timeout)
            (void)m_stop.isStopped(); // a helper may be at work on a block that takes long
    }
}

bool BlockLine::canPrepare(const Passage& passage) {
    if (passage.isBusy || passage.prepared == m_sent)
        return false;
    // When the step changes what is looked at while a block is counted, the block before has to be done.
    return !passage.pass->preparingDisturbs(slot(passage.prepared).block) ||
           std::all_of(passage.lanes.begin(), passage.lanes.end(),
                       [&](const Lane& lane) { return lane.counted == passage.prepared; });
}

BlockLine::Step BlockLine::next() {
    Step best;
    std::size_t block = m_sent; // The oldest one is what the reader waits for.
    for (Passage& passage : m_passages) {
        for (Lane& lane : passage.lanes)
            if (!lane.isBusy && lane.counted < std::min(passage.prepared, block)) {
                best = {&passage, &lane};
                block = lane.counted;
            }
        if (passage.prepared < block && canPrepare(passage)) {
            best = {&passage, nullptr};
            block = passage.prepared;
        }
    }
    return best;
}

bool BlockLine::work(Lock& lock) {
    const auto [passage, lane] = m_failure ? Step{} : next();
    if (!passage)
        return false;
    bool& isBusy = lane ? lane->isBusy : passage->isBusy;
    std::size_t& done = lane ? lane->counted : passage->prepared;
    Slot& taken = slot(done);
    Memory memory;
    std::exception_ptr failure;
    isBusy = true;
    lock.unlock();
    try {
        if (lane) {
            for (std::size_t column = lane->firstColumn; column < lane->endColumn; ++column)
                passage->pass->countColumn(taken.block, column, lane->part);
            memory = memoryOf(*passage, *lane);
        } else {
            passage->pass->prepare(taken.block, taken.firstRecord, [this] { return !m_stop.isStopped(); });
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
        if (lane) {
            lane->memory = memory;
            --taken.lanesLeft;
        }
    }
    m_changed.notify_all();
    return true;
}

} // namespace tavix::profiling
