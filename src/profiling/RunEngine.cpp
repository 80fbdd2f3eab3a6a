#include "profiling/RunEngine.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <utility>

namespace tavix::profiling {

namespace {

std::vector<ColumnValues*> valuesOf(TablePass& pass) {
    std::vector<ColumnValues*> values;
    for (std::size_t c = 0; c < pass.columns().size(); ++c)
        values.push_back(&pass.values(c));
    return values;
}

std::vector<ColumnValues*> valuesOf(const TablePasses& passes) {
    std::vector<ColumnValues*> values;
    for (const auto& pass : passes)
        for (ColumnValues* column : valuesOf(*pass))
            values.push_back(column);
    return values;
}

/// One block is being filled, one counted, and one waits for the threads that are ahead.
constexpr std::size_t kBlocksOnTheWay = 3;
/// About the bytes of a new value with its entry.
constexpr std::size_t kNewValue = 64;

/// Lets the other threads of a pool help with a pipeline during its own lifetime.
class Helpers {
  public:
    Helpers(WorkerPool& pool, BlockPipeline& pipeline) : m_pool(pool), m_pipeline(pipeline) {
        m_pipeline.open();
        m_pool.start(m_pool.threads() - 1, [&pipeline](std::size_t) {
            pipeline.help();
            return Status{};
        });
    }
    ~Helpers() {
        m_pipeline.close();
        (void)m_pool.finish();
    }
    Helpers(const Helpers&) = delete;
    Helpers& operator=(const Helpers&) = delete;

  private:
    WorkerPool& m_pool;
    BlockPipeline& m_pipeline;
};

/// Indexes of the columns from the largest measure down.
std::vector<std::size_t> orderedBy(std::size_t (ColumnValues::*measure)() const,
                                   std::span<ColumnValues* const> columns) {
    std::vector<std::size_t> order(columns.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return (columns[a]->*measure)() > (columns[b]->*measure)(); });
    return order;
}

} // namespace

RunEngine::RunEngine(const Settings& settings, std::function<bool()> poll)
    : m_now(settings.now),
      m_stop(std::move(poll)),
      m_plan(settings.memory),
      m_file(settings.spillFolder),
      m_store(m_file, m_plan.packed()),
      m_gate(m_plan.profiling()),
      m_pool(settings.threads) {}

Status RunEngine::count(source::RowReader& reader, const TablePasses& passes,
                        const std::function<void(std::size_t)>& took) {
    const std::vector<ColumnValues*> columns = valuesOf(passes);
    // With too few columns some threads would have no work.
    const std::uint32_t parts = columns.size() < 2 * std::size_t{m_pool.threads()} ? m_pool.threads() : 1;
    for (ColumnValues* column : columns)
        column->divide(parts);
    // A single thread is fastest when it counts what it has just read.
    const bool isAlone = m_pool.threads() == 1;
    BlockPipeline pipeline(passes, isAlone ? 1 : kBlocksOnTheWay, parts, m_stop);
    std::optional<Helpers> helpers(std::in_place, m_pool, pipeline);
    const auto isTooMuch = [&](const BlockPipeline::Memory& memory, std::size_t onTheWay) {
        return memory.values + onTheWay > m_plan.counting() || memory.offsetIndex > m_plan.offsetIndex();
    };
    for (;;) {
        source::RowBlock& block = pipeline.free();
        const auto more = reader.read(block);
        if (!more)
            return more.error();
        if (!*more)
            break;
        const std::size_t rows = block.rows;
        const std::size_t onTheWay = isAlone ? 0 : kBlocksOnTheWay * rows * columns.size() * kNewValue;
        pipeline.send();
        if (isAlone)
            pipeline.finish();
        took(rows);
        if (m_stop.isStopped())
            return StopSignal::stopped();
        if (isTooMuch(pipeline.memory(), onTheWay))
            pipeline.finish();
        if (isTooMuch(pipeline.memory(), 0)) {
            helpers.reset();
            dropLargestOffsetIndexes(columns);
            if (Status status = spillWhatIsTooMuch(columns); !status)
                return status;
            pipeline.measure();
            helpers.emplace(m_pool, pipeline);
        }
    }
    pipeline.finish();
    helpers.reset();
    dropLargestOffsetIndexes(columns);
    return spillWhatIsTooMuch(columns);
}

Status RunEngine::spillWhatIsTooMuch(std::span<ColumnValues* const> columns) {
    std::size_t memory = 0;
    for (const ColumnValues* column : columns)
        memory += column->memory();
    if (memory <= m_plan.counting())
        return {};
    std::vector<ColumnValues*> chosen;
    for (const std::size_t i : orderedBy(&ColumnValues::memory, columns)) {
        if (memory <= m_plan.afterSpilling() || columns[i]->valuesInMemory() == 0)
            break;
        memory -= columns[i]->memory();
        chosen.push_back(columns[i]);
    }
    return divide(chosen.size(), [&](std::size_t i) -> Status {
        const auto pass = m_gate.take(chosen[i]->spillingTakes(), m_stop);
        return chosen[i]->spill(m_file, m_stop);
    });
}

void RunEngine::dropLargestOffsetIndexes(std::span<ColumnValues* const> columns) const {
    const auto memory = [&] {
        std::size_t sum = 0;
        for (const ColumnValues* column : columns)
            sum += column->offsetIndexMemory();
        return sum;
    };
    while (memory() > m_plan.offsetIndex())
        (*std::max_element(columns.begin(), columns.end(), [](const ColumnValues* a, const ColumnValues* b) {
            return a->offsetIndexMemory() < b->offsetIndexMemory();
        }))->dropOffsetIndex();
}

Status RunEngine::spillWhatIsTooMuch(TablePass& pass) {
    return spillWhatIsTooMuch(valuesOf(pass));
}

void RunEngine::forget(TablePass& pass) {
    for (ColumnValues* values : valuesOf(pass))
        values->clear(m_file);
}

Status RunEngine::divide(std::size_t count, const TaskBatch::Task& task) {
    m_pool.start(count, [&](std::size_t i) { return m_stop.isStopped() ? Status{StopSignal::stopped()} : task(i); });
    return m_pool.finish([&] { (void)m_stop.isStopped(); });
}

Result<std::vector<FieldProfile>> RunEngine::figures(TablePass& pass, const Along& along) {
    const std::vector<ColumnValues*> columns = valuesOf(pass);
    // The long columns first, so that no thread is left alone with one at the end.
    const std::vector<std::size_t> order = orderedBy(&ColumnValues::work, columns);
    std::vector<FieldProfile> fields(columns.size());
    std::size_t allWork = 1;
    for (const ColumnValues* column : columns)
        allWork += column->work();
    const auto figure = [&](std::size_t i) -> Status {
        const std::size_t c = order[i];
        ColumnValues& values = *columns[c];
        const std::size_t share = m_plan.profiling() / m_pool.threads();
        const bool isTooLarge = values.isSpilled() || profilingMemory(values) > m_plan.profiling();
        const std::size_t takes = isTooLarge ? std::max(share, values.spillingTakes()) : profilingMemory(values);
        const auto memory = m_gate.take(takes, m_stop);
        if (isTooLarge) {
            if (Status spilled = values.spill(m_file, m_stop); !spilled)
                return spilled;
        }
        // A column with more than one thread's share of the work would keep the others waiting at the end.
        const auto threads = static_cast<unsigned>(values.work() * m_pool.threads() / allWork) + 1;
        values.unite();
        const std::string& name = pass.columns()[c];
        const job::TableDescription& table = pass.description();
        auto figures =
            profileField(values, name, static_cast<int>(c) + 1,
                         {m_file, m_store, m_stop, share, threads, m_now, {table.datesOf(name), table.fitsAtLeast}});
        if (!figures)
            return figures.error();
        values.clearValues(m_file);
        fields[c] = std::move(*figures);
        return along.ready ? along.ready(fields[c]) : Status{};
    };
    // Packing the offset indexes does not depend on the profiles and uses the time of threads that have no column left.
    Status status = divide(columns.size(), [&](std::size_t i) -> Status {
        columns[i]->closeOffsetIndex();
        return {};
    });
    std::vector<std::vector<repository::OffsetIndexPage>> offsetIndexes(columns.size());
    if (status)
        status = divide(1 + columns.size() * 2, [&](std::size_t i) -> Status {
            if (i == 0)
                return along.work ? along.work() : Status{};
            if (i <= columns.size())
                return figure(i - 1);
            const std::size_t c = order[i - columns.size() - 1];
            offsetIndexes[c] = columns[c]->takeOffsetIndex();
            return {};
        });
    if (!status)
        return status.error();
    for (std::size_t c = 0; c < columns.size(); ++c)
        fields[c].offsetIndex = std::move(offsetIndexes[c]);
    return fields;
}

} // namespace tavix::profiling
