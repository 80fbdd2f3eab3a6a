#include "profiling/BlockColumns.h"

namespace tavix::profiling {

namespace {

/// A cell is at most some GiB long, so that with it a column still ends below 32 bits.
constexpr std::size_t kMostBytes = std::size_t{64} << 20;

} // namespace

BlockColumns::BlockColumns(std::vector<bool> used) : m_views(used.size()) {
    for (std::size_t c = 0; c < used.size(); ++c)
        if (used[c])
            m_columns.push_back({c, {}, {}, {}});
}

BlockColumns::Taken BlockColumns::take(const source::RowBlock& block, std::span<const std::uint32_t> rows) {
    std::size_t taken = rows.size();
    for (const Column& column : m_columns) {
        const std::vector<source::Cell>& cells = block.columns[column.source];
        std::size_t bytes = 0;
        for (std::size_t i = 0; i < taken; ++i) {
            bytes += cells[rows[i]].size;
            if (bytes > kMostBytes && i > 0)
                taken = i;
        }
    }
    for (Column& column : m_columns) {
        const std::vector<source::Cell>& cells = block.columns[column.source];
        column.bytes.clear();
        column.ends.resize(taken);
        column.nulls.resize(taken);
        bool hasNulls = false;
        for (std::size_t i = 0; i < taken; ++i) {
            const source::Cell& cell = cells[rows[i]];
            if (!cell.isNull && cell.size > 0)
                column.bytes.append(cell.data, cell.size);
            column.ends[i] = static_cast<std::uint32_t>(column.bytes.size());
            column.nulls[i] = cell.isNull ? 1 : 0;
            hasNulls = hasNulls || cell.isNull;
        }
        expression::BlockColumn& view = m_views[column.source];
        view.bytes = column.bytes;
        view.ends = column.ends;
        view.nulls = hasNulls ? std::span<const std::uint8_t>(column.nulls) : std::span<const std::uint8_t>();
    }
    m_block.rows = taken;
    m_block.columns = m_views;
    return {&m_block, taken};
}

} // namespace tavix::profiling
