#include "access/DistributionFilter.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>

namespace tavix {

namespace {

using repository::UnpackedBlock;

/// In the order of DistributionFilter::Column.
const std::array<expression::Field, 2>& fields() {
    static const std::array<expression::Field, 2> kFields{expression::Field{"Value", expression::Type::Text},
                                                          expression::Field{"Count", expression::Type::Integer}};
    return kFields;
}

/// How many bytes a condition block takes at the beginning of a filter text; docs/formats/filter.md. It is a comment,
/// but one that a value with the end of a comment in it would end too early.
std::size_t conditionBlockSize(std::string_view text) {
    constexpr std::string_view kBegin = "/*{{BEGIN CONDITIONS\r\n";
    constexpr std::string_view kEnd = "}}END CONDITIONS*/\r\n";
    const std::size_t end = text.starts_with(kBegin) ? text.find(kEnd, kBegin.size()) : std::string_view::npos;
    return end == std::string_view::npos ? 0 : end + kEnd.size();
}

/// The first row from `first` on for which `isBehind` is true; it stays true from there on.
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

Result<std::unique_ptr<DistributionFilter>> DistributionFilter::compile(std::string_view text) {
    const std::size_t skipped = conditionBlockSize(text);
    expression::Compiled compiled = expression::compile(text.substr(skipped), fields(), expression::Wanted::Condition);
    if (!compiled.ok()) {
        compiled.error.line += static_cast<int>(std::count(text.begin(), text.begin() + skipped, '\n'));
        return Error{fmt::format("The filter is not understood: {}", expression::describe(compiled.error))};
    }
    return std::unique_ptr<DistributionFilter>(new DistributionFilter(*compiled.program));
}

DistributionFilter::DistributionFilter(const expression::Program& program)
    : m_usesValue(program.uses(Value)),
      m_usesCount(program.uses(Count)),
      m_range(program.passingRange(Count)),
      m_evaluator(program),
      m_isDone(m_range.isEmpty() || m_range.high < 0) {}

Result<std::span<const std::uint32_t>> DistributionFilter::passing(const UnpackedBlock& block, std::int64_t firstRow) {
    if (m_isDone || block.rowCount() == 0)
        return std::span<const std::uint32_t>();
    std::size_t first = 0;
    std::size_t last = block.rowCount();
    if (m_usesCount) {
        if (block.countAt(0) > std::uint64_t{std::numeric_limits<std::int64_t>::max()})
            return Error{"A stored distribution is damaged."};
        // Counts fall, so that the rows in range lie together. What is outside is cut off also where the block has to
        // be looked at: where blocks begin must not decide whether a row fails.
        const auto low = static_cast<std::uint64_t>(std::max<std::int64_t>(m_range.low, 0));
        const auto high = static_cast<std::uint64_t>(m_range.high);
        first = firstRowThat(first, last, [&](std::size_t row) { return block.countAt(row) <= high; });
        last = firstRowThat(first, last, [&](std::size_t row) { return block.countAt(row) < low; });
        m_isDone = last < block.rowCount();
        if (first == last)
            return std::span<const std::uint32_t>();
    }

    const std::span<const std::uint32_t> rows = m_evaluator.passing(columnsOf(block, first, last));
    if (m_evaluator.failures() > 0) {
        if (m_failures == 0) {
            m_firstFailed = firstRow + static_cast<std::int64_t>(first + m_evaluator.firstFailedRow());
            m_firstFailure = m_evaluator.firstFailure();
        }
        m_failures += m_evaluator.failures();
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
        expression::BlockColumn& values = m_columns[Value];
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
        // Counts fall, and most of a long distribution are 1.
        const bool isUniform = block.countAt(first) == block.countAt(last - 1);
        m_counts.resize(isUniform ? 1 : rows);
        block.readCounts(first, m_counts);
        m_columns[Count].counts = m_counts;
        m_columns[Count].isUniform = isUniform;
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
