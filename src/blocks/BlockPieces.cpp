#include "blocks/BlockPieces.h"

#include <algorithm>

namespace tavix::expression {

namespace {

/// Bounds the values that the operators keep, one for each row of a piece.
constexpr std::size_t kMostValues = std::size_t{1} << 22;

std::size_t countNodes(const Node& node) {
    std::size_t count = 1;
    for (const NodePtr& child : node.children)
        count += countNodes(*child);
    return count;
}

} // namespace

void addFailures(BlockFailures& failures, const Frame& frame, std::uint32_t firstRowOfPiece) {
    if (failures.count == 0 && frame.hasFailures()) {
        failures.firstRow = firstRowOfPiece + frame.firstFailedRow();
        failures.reason = frame.firstFailure();
    }
    failures.count += frame.failures();
}

BlockPieces::BlockPieces(const Node& tree) : m_mostRows(std::max<std::size_t>(1, kMostValues / countNodes(tree))) {}

const Block& BlockPieces::slice(const Block& block, std::size_t first, std::size_t rows) {
    m_columns.assign(block.columns.begin(), block.columns.end());
    m_ends.resize(m_columns.size());
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        BlockColumn& column = m_columns[i];
        if (!column.ends.empty()) {
            const std::uint32_t begin = first == 0 ? 0 : column.ends[first - 1];
            m_ends[i].assign(column.ends.begin() + first, column.ends.begin() + first + rows);
            for (std::uint32_t& end : m_ends[i])
                end -= begin;
            column.bytes = column.bytes.substr(begin, m_ends[i].back());
            column.ends = m_ends[i];
        }
        if (!column.counts.empty() && !column.isUniform)
            column.counts = column.counts.subspan(first, rows);
        if (!column.nulls.empty())
            column.nulls = column.nulls.subspan(first, rows);
    }
    m_slice = {rows, m_columns};
    return m_slice;
}

} // namespace tavix::expression
