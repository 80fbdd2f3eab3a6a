#include "profiling/RunEngine.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <numeric>
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

/// Indexes, the one with the most memory first.
std::vector<std::size_t> byMemory(std::span<ColumnValues* const> columns) {
    std::vector<std::size_t> order(columns.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return columns[a]->memory() > columns[b]->memory(); });
    return order;
}

} // namespace

RunEngine::RunEngine(const Settings& settings, std::function<bool()> poll)
    : m_stop(std::move(poll)),
      m_plan(settings.memory),
      m_file(settings.spillFolder),
      m_store(m_file, m_plan.packed()),
      m_gate(m_plan.figuring()),
      m_pool(settings.threads) {}

void RunEngine::begin(const TablePasses& passes, const source::RowBlock& block, std::int64_t firstRecord,
                      std::uint32_t parts) {
    const bool havePrograms =
        std::any_of(passes.begin(), passes.end(), [](const auto& pass) { return pass->hasPrograms(); });
    if (havePrograms) {
        m_pool.start(passes.size(), [&](std::size_t i) { passes[i]->prepare(block, firstRecord); });
        m_pool.finish();
    } else {
        for (const auto& pass : passes)
            pass->prepare(block, firstRecord);
    }
    const std::size_t columns = passes.front()->columns().size();
    m_pool.start(columns * passes.size() * parts, [&passes, &block, columns, parts](std::size_t i) {
        const std::size_t column = i / parts;
        passes[column / columns]->countColumn(block, column % columns, static_cast<std::uint32_t>(i % parts));
    });
}

Status RunEngine::count(source::RowReader& reader, const TablePasses& passes,
                        const std::function<void(std::size_t)>& took) {
    const std::vector<ColumnValues*> columns = valuesOf(passes);
    // Too few columns would leave threads without work.
    const std::uint32_t parts = columns.size() < 2 * std::size_t{m_pool.threads()} ? m_pool.threads() : 1;
    for (ColumnValues* column : columns)
        column->divide(parts);
    // While one block is counted the next one is read; alone a thread does better to count what it has just read.
    const bool readsAhead = m_pool.threads() > 1;
    std::array<source::RowBlock, 2> blocks;
    std::size_t current = 0;
    std::int64_t record = 1;
    auto more = reader.read(blocks[current]);
    while (more && *more) {
        const source::RowBlock& block = blocks[current];
        const std::size_t rows = block.rows;
        begin(passes, block, record, parts);
        if (readsAhead) {
            try {
                more = reader.read(blocks[1 - current]);
            } catch (...) {
                m_pool.finish(); // which still looks at the other block
                throw;
            }
            current = 1 - current;
        }
        m_pool.finish();
        record += static_cast<std::int64_t>(rows);
        took(rows);
        if (m_stop.isStopped())
            return StopSignal::stopped();
        if (Status status = spillWhatIsTooMuch(columns); !status)
            return status;
        if (!readsAhead)
            more = reader.read(blocks[current]);
    }
    return more ? Status{} : Status{more.error()};
}

Status RunEngine::spillWhatIsTooMuch(std::span<ColumnValues* const> columns) {
    std::size_t memory = 0;
    for (const ColumnValues* column : columns)
        memory += column->memory();
    if (memory <= m_plan.counting())
        return {};
    std::vector<ColumnValues*> chosen;
    for (const std::size_t i : byMemory(columns)) {
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

Status RunEngine::spillWhatIsTooMuch(TablePass& pass) {
    return spillWhatIsTooMuch(valuesOf(pass));
}

void RunEngine::forget(TablePass& pass) {
    for (ColumnValues* values : valuesOf(pass))
        values->clear(m_file);
}

Status RunEngine::divide(std::size_t count, const std::function<Status(std::size_t)>& work) {
    std::atomic<bool> hasFailed = false;
    std::mutex mutex;
    Status outcome;
    m_pool.start(count, [&](std::size_t i) {
        if (hasFailed)
            return;
        Status status = m_stop.isStopped() ? Status{StopSignal::stopped()} : work(i);
        if (status)
            return;
        const std::lock_guard lock(mutex);
        if (!hasFailed)
            outcome = std::move(status);
        hasFailed = true;
    });
    m_pool.finish();
    return outcome;
}

Result<std::vector<FieldFigures>> RunEngine::figures(TablePass& pass) {
    const std::vector<ColumnValues*> columns = valuesOf(pass);
    // The long ones first, so that no thread is left alone with one at the end.
    const std::vector<std::size_t> order = byMemory(columns);
    std::vector<FieldFigures> fields(columns.size());
    Status status = divide(columns.size(), [&](std::size_t i) -> Status {
        const std::size_t c = order[i];
        ColumnValues& values = *columns[c];
        const std::size_t share = m_plan.figuring() / m_pool.threads();
        const bool isTooLarge = values.isSpilled() || figuringTakes(values) > m_plan.figuring();
        const std::size_t takes = isTooLarge ? std::max(share, values.spillingTakes()) : figuringTakes(values);
        const auto memory = m_gate.take(takes, m_stop);
        if (isTooLarge) {
            if (Status spilled = values.spill(m_file, m_stop); !spilled)
                return spilled;
        }
        values.unite();
        const unsigned threads = std::max(1U, m_pool.threads() / static_cast<unsigned>(columns.size()));
        auto figures = computeFigures(values, pass.columns()[c], static_cast<int>(c) + 1,
                                      {m_file, m_store, m_stop, share, threads});
        if (!figures)
            return figures.error();
        values.clear(m_file);
        fields[c] = std::move(*figures);
        return {};
    });
    if (!status)
        return status.error();
    return fields;
}

} // namespace tavix::profiling
