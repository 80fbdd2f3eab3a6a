#include "profiling/ColumnValues.h"

#include "profiling/KeyedSort.h"

namespace tavix::profiling {

namespace {

constexpr std::size_t kOutputBuffer = std::size_t{64} << 10;

} // namespace

std::size_t ColumnValues::spillingTakes() const {
    return m_counter.entries().size() * 2 * sizeof(Keyed) + kOutputBuffer;
}

Status ColumnValues::spill(SpillFile& file, StopSignal& stop) {
    const auto entries = m_counter.entries();
    if (entries.empty())
        return {};
    std::vector<Keyed> order;
    {
        std::vector<Keyed> spare;
        order = sortedByText(entries, spare, stop);
    }
    RunOutput output(file, kOutputBuffer);
    constexpr std::size_t kBetweenStops = 4096;
    for (std::size_t i = 0; i < order.size(); ++i) {
        if (i % kBetweenStops == 0 && stop.isStopped())
            return StopSignal::stopped();
        const auto& entry = entries[order[i].index];
        if (Status status = output.add({0, entry.count, entry.text()}); !status)
            return status;
    }
    auto run = output.finish();
    if (!run)
        return run.error();
    m_counter.dropValues();
    return m_runs.add(file, std::move(*run));
}

void ColumnValues::clear(SpillFile& file) {
    m_counter = ValueCounter();
    m_runs.release(file);
}

} // namespace tavix::profiling
