#include "profiling/RunEngine.h"

#include "profiling/FirstFailure.h"

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

/// The reader needs a block to fill while one is counted and one waits for the threads that are ahead.
constexpr std::size_t kBlocksOnTheWay = 3;
/// About what a value takes that was not met before, with its place among the others.
constexpr std::size_t kNewValue = 64;

/// Lets the other threads of a pool help with a line as long as it lives.
class Helpers {
  public:
    Helpers(WorkerPool& pool, BlockLine& line) : m_pool(pool), m_line(line) {
        m_line.open();
        m_pool.start(m_pool.threads() - 1, [&line](std::size_t) { line.help(); });
    }
    ~Helpers() {
        m_line.close();
        m_pool.finish();
    }
    Helpers(const Helpers&) = delete;
    Helpers& operator=(const Helpers&) = delete;

  private:
    WorkerPool& m_pool;
    BlockLine& m_line;
};

/// Indexes, the one with the most of it first.
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
    : m_stop(std::move(poll)),
      m_plan(settings.memory),
      m_file(settings.spillFolder),
      m_store(m_file, m_plan.packed()),
      m_gate(m_plan.figuring()),
      m_pool(settings.threads) {}

Status RunEngine::count(source::RowReader& reader, const TablePasses& passes,
                        const std::function<void(std::size_t)>& took) {
    const std::vector<ColumnValues*> columns = valuesOf(passes);
    // Too few columns would leave threads without work.
    const std::uint32_t parts = columns.size() < 2 * std::size_t{m_pool.threads()} ? m_pool.threads() : 1;
    for (ColumnValues* column : columns)
        column->divide(parts);
    // Alone a thread does best to count what it has just read.
    const bool isAlone = m_pool.threads() == 1;
    BlockLine line(passes, isAlone ? 1 : kBlocksOnTheWay, parts, m_stop);
    std::optional<Helpers> helpers(std::in_place, m_pool, line);
    const auto isTooMuch = [&](const BlockLine::Memory& memory, std::size_t onTheWay) {
        return memory.values + onTheWay > m_plan.counting() || memory.places > m_plan.places();
    };
    for (;;) {
        source::RowBlock& block = line.free();
        const auto more = reader.read(block);
        if (!more)
            return more.error();
        if (!*more)
            break;
        const std::size_t rows = block.rows;
        const std::size_t onTheWay = isAlone ? 0 : kBlocksOnTheWay * rows * columns.size() * kNewValue;
        line.send();
        if (isAlone)
            line.finish();
        took(rows);
        if (m_stop.isStopped())
            return StopSignal::stopped();
        if (isTooMuch(line.memory(), onTheWay))
            line.finish();
        if (isTooMuch(line.memory(), 0)) {
            helpers.reset();
            dropPlacesOfTooMuch(columns);
            if (Status status = spillWhatIsTooMuch(columns); !status)
                return status;
            line.measure();
            helpers.emplace(m_pool, line);
        }
    }
    line.finish();
    helpers.reset();
    dropPlacesOfTooMuch(columns);
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

void RunEngine::dropPlacesOfTooMuch(std::span<ColumnValues* const> columns) const {
    const auto memory = [&] {
        std::size_t sum = 0;
        for (const ColumnValues* column : columns)
            sum += column->placesMemory();
        return sum;
    };
    while (memory() > m_plan.places())
        (*std::max_element(columns.begin(), columns.end(), [](const ColumnValues* a, const ColumnValues* b) {
            return a->placesMemory() < b->placesMemory();
        }))->dropPlaces();
}

Status RunEngine::spillWhatIsTooMuch(TablePass& pass) {
    return spillWhatIsTooMuch(valuesOf(pass));
}

void RunEngine::forget(TablePass& pass) {
    for (ColumnValues* values : valuesOf(pass))
        values->clear(m_file);
}

Status RunEngine::divide(std::size_t count, const std::function<Status(std::size_t)>& work) {
    FirstFailure failure;
    m_pool.start(count, [&](std::size_t i) {
        if (!failure.hasFailed())
            failure.keep(m_stop.isStopped() ? Status{StopSignal::stopped()} : work(i));
    });
    m_pool.finish([&] { (void)m_stop.isStopped(); });
    return failure.outcome();
}

Result<std::vector<FieldFigures>> RunEngine::figures(TablePass& pass, const Along& along) {
    const std::vector<ColumnValues*> columns = valuesOf(pass);
    // The long ones first, so that no thread is left alone with one at the end.
    const std::vector<std::size_t> order = orderedBy(&ColumnValues::work, columns);
    std::vector<FieldFigures> fields(columns.size());
    std::size_t allWork = 1;
    for (const ColumnValues* column : columns)
        allWork += column->work();
    const auto figure = [&](std::size_t i) -> Status {
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
        // One that has more than a thread's share of the work would keep the others waiting in the end.
        const auto threads = static_cast<unsigned>(values.work() * m_pool.threads() / allWork) + 1;
        values.unite();
        auto figures = computeFigures(values, pass.columns()[c], static_cast<int>(c) + 1,
                                      {m_file, m_store, m_stop, share, threads});
        if (!figures)
            return figures.error();
        values.clearValues(m_file);
        fields[c] = std::move(*figures);
        return along.ready ? along.ready(fields[c]) : Status{};
    };
    // The places need nothing of the figures, and fill the time of a thread that has none to compute any more.
    Status status = divide(columns.size(), [&](std::size_t i) -> Status {
        columns[i]->closePlaces();
        return {};
    });
    std::vector<std::vector<repository::OffsetIndexPage>> places(columns.size());
    if (status)
        status = divide(1 + columns.size() * 2, [&](std::size_t i) -> Status {
            if (i == 0)
                return along.work ? along.work() : Status{};
            if (i <= columns.size())
                return figure(i - 1);
            const std::size_t c = order[i - columns.size() - 1];
            places[c] = columns[c]->takePlaces();
            return {};
        });
    if (!status)
        return status.error();
    for (std::size_t c = 0; c < columns.size(); ++c)
        fields[c].places = std::move(places[c]);
    return fields;
}

} // namespace tavix::profiling
