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

bool havePrograms(const TablePasses& passes) {
    return std::any_of(passes.begin(), passes.end(), [](const auto& pass) { return pass->hasPrograms(); });
}

constexpr std::size_t kMostBlocks = 8;
constexpr std::size_t kBatchBytes = std::size_t{16} << 20;

/// Blocks that are counted at one go.
class Batch {
  public:
    Batch(std::size_t mostBlocks, const MemoryPlan& plan, bool& isAtEnd)
        : m_blocks(mostBlocks), m_bytes(std::min(plan.counting() / 16, kBatchBytes)), m_isAtEnd(isAtEnd) {}

    /// False when there are no rows any more. Blocks are read until they have the number or the size that is wanted.
    Result<bool> read(source::RowReader& reader) {
        m_size = 0;
        m_rows = 0;
        for (std::size_t bytes = 0; !m_isAtEnd && (m_size == 0 || (m_size < m_blocks.size() && bytes < m_bytes));) {
            source::RowBlock& block = m_blocks[m_size];
            const auto more = reader.read(block);
            if (!more)
                return more.error();
            m_isAtEnd = !*more;
            if (m_isAtEnd)
                break;
            m_rows += block.rows;
            if (++m_size < m_blocks.size())
                bytes += bytesOf(block);
        }
        return m_size > 0;
    }
    [[nodiscard]] std::span<const source::RowBlock> blocks() const { return {m_blocks.data(), m_size}; }
    [[nodiscard]] std::size_t rows() const { return m_rows; }

  private:
    /// About what the block takes, and its values if they are all new.
    static std::size_t bytesOf(const source::RowBlock& block) {
        constexpr std::size_t kPerCell = 64;
        std::size_t bytes = block.columns.size() * block.rows * kPerCell;
        for (const auto& cells : block.columns)
            for (std::size_t row = 0; row < block.rows; ++row)
                bytes += cells[row].size;
        return bytes;
    }

    std::vector<source::RowBlock> m_blocks;
    std::size_t m_bytes;
    bool& m_isAtEnd; ///< of the reader
    std::size_t m_size = 0;
    std::size_t m_rows = 0;
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

void RunEngine::begin(const TablePasses& passes, std::span<const source::RowBlock> blocks, std::int64_t firstRecord,
                      std::uint32_t parts) {
    for (const source::RowBlock& block : blocks) {
        if (havePrograms(passes)) {
            m_pool.start(passes.size(), [&](std::size_t i) { passes[i]->prepare(block, firstRecord); });
            m_pool.finish();
        } else {
            for (const auto& pass : passes)
                pass->prepare(block, firstRecord);
        }
    }
    const std::size_t columns = passes.front()->columns().size();
    m_pool.start(columns * passes.size() * parts, [&passes, blocks, columns, parts](std::size_t i) {
        const std::size_t column = i / parts;
        for (const source::RowBlock& block : blocks)
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
    // While some blocks are counted the next ones are read; alone a thread does better to count what it has just read.
    const bool readsAhead = m_pool.threads() > 1;
    // Threads that share a column wait for each other less often when they count several blocks at a time.
    const std::size_t most = parts > 1 && !havePrograms(passes) ? kMostBlocks : 1;
    bool isAtEnd = false;
    std::array<Batch, 2> batches{Batch(most, m_plan, isAtEnd), Batch(most, m_plan, isAtEnd)};
    std::size_t current = 0;
    std::int64_t record = 1;
    auto more = batches[current].read(reader);
    while (more && *more) {
        const std::size_t rows = batches[current].rows();
        begin(passes, batches[current].blocks(), record, parts);
        if (readsAhead) {
            try {
                more = batches[1 - current].read(reader);
            } catch (...) {
                m_pool.finish(); // which still looks at the other blocks
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
        dropPlacesOfTooMuch(columns);
        if (!readsAhead)
            more = batches[current].read(reader);
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
    const std::vector<std::size_t> order = orderedBy(&ColumnValues::work, columns);
    std::vector<FieldFigures> fields(columns.size());
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
        values.unite();
        const unsigned threads = std::max(1U, m_pool.threads() / static_cast<unsigned>(columns.size()));
        auto figures = computeFigures(values, pass.columns()[c], static_cast<int>(c) + 1,
                                      {m_file, m_store, m_stop, share, threads});
        if (!figures)
            return figures.error();
        values.clearValues(m_file);
        fields[c] = std::move(*figures);
        return {};
    };
    // The places need nothing of the figures, and fill the time of a thread that has none to compute any more.
    Status status = divide(columns.size(), [&](std::size_t i) -> Status {
        columns[i]->closePlaces();
        return {};
    });
    std::vector<std::vector<repository::PlacePage>> places(columns.size());
    if (status)
        status = divide(columns.size() * 2, [&](std::size_t i) -> Status {
            if (i < columns.size())
                return figure(i);
            const std::size_t c = order[i - columns.size()];
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
