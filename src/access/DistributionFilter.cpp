#include "access/DistributionFilter.h"

#include "access/PrViewDisplayMessage.h"
#include "base/Characters.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <new>

namespace tavix {

namespace {

using repository::UnpackedBlock;

/// The longest sentence accepted from a file.
constexpr std::size_t kLongestFault = 200;
constexpr std::string_view kNoMemory = "There is not enough memory for the filter.";

/// The first row from `first` on for which `isBehind` is true; it is monotonic.
template <typename Test>
std::size_t firstRowThat(std::size_t first, std::size_t last, Test isBehind) {
    while (first < last) {
        const std::size_t middle = first + (last - first) / 2;
        if (isBehind(middle))
            last = middle;
        else
            first = middle + 1;
    }
    return first;
}

} // namespace

Result<std::unique_ptr<DistributionFilter>> DistributionFilter::compile(std::string_view text, std::int64_t now) {
    if (const std::string_view fault = faultOfUnfinished(text); !fault.empty())
        return Error{fmt::format("The filter was saved unfinished: {}.", shortened(fault, kLongestFault))};
    const expression::Compiled compiled = compileFilter(text, now);
    if (!compiled.ok())
        return Error{fmt::format("The filter is not understood: {}", expression::describe(compiled.error))};
    try {
        return std::unique_ptr<DistributionFilter>(new DistributionFilter(*compiled.program));
    } catch (const std::bad_alloc&) {
        return Error{std::string(kNoMemory)};
    }
}

DistributionFilter::DistributionFilter(const expression::Program& program)
    : m_usesValue(program.uses(ValueColumn)),
      m_usesCount(program.uses(CountColumn)),
      m_range(program.passingRange(CountColumn)),
      m_evaluator(program),
      m_isDone(m_range.isEmpty() || m_range.high < 0) {}

Result<std::span<const std::uint32_t>> DistributionFilter::passing(const UnpackedBlock& block, std::int64_t firstRow,
                                                                   const expression::GoOn& goOn) {
    if (m_isDone || block.rowCount() == 0)
        return std::span<const std::uint32_t>();
    std::size_t first = 0;
    std::size_t last = block.rowCount();
    if (m_usesCount) {
        if (block.countAt(0) > std::uint64_t{std::numeric_limits<std::int64_t>::max()})
            return Error{"A stored distribution is damaged."};
        // Counts descend, so the rows in range are contiguous. Rows outside are excluded even if the block must be
        // evaluated: block boundaries must not decide whether a row fails.
        const auto low = static_cast<std::uint64_t>(std::max<std::int64_t>(m_range.low, 0));
        const auto high = static_cast<std::uint64_t>(m_range.high);
        first = firstRowThat(first, last, [&](std::size_t row) { return block.countAt(row) <= high; });
        last = firstRowThat(first, last, [&](std::size_t row) { return block.countAt(row) < low; });
        m_isDone = last < block.rowCount();
        if (first == last)
            return std::span<const std::uint32_t>();
    }

    std::span<const std::uint32_t> rows;
    try {
        rows = m_evaluator.passing(columnsOf(block, first, last), goOn);
    } catch (const std::bad_alloc&) {
        return Error{std::string(kNoMemory)};
    }
    if (m_evaluator.wasStopped())
        return Error{kReadingStopped};
    if (const expression::BlockFailures& failures = m_evaluator.failures(); failures.count > 0) {
        if (m_failures == 0) {
            m_firstFailed = firstRow + static_cast<std::int64_t>(first + failures.firstRow);
            m_firstFailure = failures.reason;
        }
        m_failures += failures.count;
    }
    if (first == 0)
        return rows;
    m_rows.assign(rows.begin(), rows.end());
    for (std::uint32_t& row : m_rows)
        row += static_cast<std::uint32_t>(first);
    return std::span<const std::uint32_t>(m_rows);
}

expression::Block DistributionFilter::columnsOf(const UnpackedBlock& block, std::size_t first, std::size_t last) {
    const std::size_t rows = last - first;
    if (m_usesValue) {
        expression::BlockColumn& values = m_columns[ValueColumn];
        const std::uint32_t begin = first == 0 ? 0 : block.ends()[first - 1];
        values.bytes = block.text().substr(begin, block.ends()[last - 1] - begin);
        values.ends = block.ends().subspan(first, rows);
        if (begin != 0) {
            m_ends.assign(values.ends.begin(), values.ends.end());
            for (std::uint32_t& end : m_ends)
                end -= begin;
            values.ends = m_ends;
        }
        values.nulls = {};
        const std::optional<std::size_t> null = block.nullRow();
        if (null && *null >= first && *null < last) {
            m_nulls.assign(rows, 0);
            m_nulls[*null - first] = 1;
            values.nulls = m_nulls;
        }
    }
    if (m_usesCount) {
        // Counts descend, and most counts of a long distribution are 1.
        const bool isUniform = block.countAt(first) == block.countAt(last - 1);
        m_counts.resize(isUniform ? 1 : rows);
        block.readCounts(first, m_counts);
        m_columns[CountColumn].counts = m_counts;
        m_columns[CountColumn].isUniform = isUniform;
    }
    return {rows, m_columns};
}

KvbString DistributionFilter::warning() const {
    if (m_failures == 0)
        return {};
    return fmt::format("The filter could not be evaluated for {} {}, which {} left out. Row {}: {}", m_failures,
                       m_failures == 1 ? "row" : "rows", m_failures == 1 ? "is" : "are", m_firstFailed + 1,
                       m_firstFailure);
}

} // namespace tavix
