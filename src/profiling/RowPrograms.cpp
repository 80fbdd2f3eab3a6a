#include "profiling/RowPrograms.h"

#include "base/Characters.h"

#include <fmt/format.h>

namespace tavix::profiling {

namespace {

/// Bytes of a value in the row log; a cell may have any length.
constexpr std::size_t kLongestLogged = 4000;

KvbString loggedText(const source::Cell& cell) {
    if (cell.isNull)
        return {};
    return shortened({cell.data, cell.size}, kLongestLogged);
}

std::int64_t recordOf(const RowSlice& slice, std::uint32_t row) {
    const std::vector<std::int64_t>& records = slice.block.records;
    return records.empty() ? slice.firstRecord + slice.rows[row] : records[slice.rows[row]];
}

} // namespace

void RowFailures::add(const RowSlice& slice, const expression::BlockFailures& failures) {
    if (m_count == 0 && failures.count > 0) {
        m_firstRecord = recordOf(slice, failures.firstRow);
        m_reason = failures.reason;
    }
    m_count += static_cast<std::int64_t>(failures.count);
}

std::string RowFailures::text() const {
    return m_count == 1 ? fmt::format("row {} could not be evaluated: {}", m_firstRecord, m_reason)
                        : fmt::format("{} rows could not be evaluated; the first is row {}: {}", m_count, m_firstRecord,
                                      m_reason);
}

std::span<const std::uint32_t> ConditionPass::passing(const RowSlice& slice) {
    const auto rows = m_evaluator.passing(slice.values, slice.goOn);
    m_failures.add(slice, m_evaluator.failures());
    return rows;
}

MetricPass::MetricPass(job::Figure figure, const expression::Program& program)
    : m_aggregate(figure, program.isTextField()) {
    if (figure == job::Figure::Count)
        m_condition.emplace(program);
    else
        m_values.emplace(program);
}

void MetricPass::take(const RowSlice& slice) {
    if (m_condition) {
        m_rows += static_cast<std::int64_t>(m_condition->passing(slice).size());
        return;
    }
    const auto add = [this](const expression::ValuePiece& piece) {
        for (std::uint32_t row = 0; row < piece.rows; ++row)
            if (!piece.isFailed(row))
                m_aggregate.add(piece.values.at(row));
    };
    m_values->evaluate(slice.values, add, slice.goOn);
    m_failures.add(slice, m_values->failures());
}

KvbDatavar MetricPass::result() const {
    return m_condition ? KvbDatavar(m_rows) : m_aggregate.result();
}

std::int64_t MetricPass::usedRows() const {
    return m_condition ? m_rows : m_aggregate.usedRows();
}

const RowFailures& MetricPass::failures() const {
    return m_condition ? m_condition->failures() : m_failures;
}

RulePass::RulePass(const expression::Program& program, std::vector<std::size_t> logColumns, std::size_t logLimit)
    : m_condition(program), m_logColumns(std::move(logColumns)), m_logLimit(logLimit) {}

void RulePass::take(const RowSlice& slice) {
    const auto passing = m_condition.passing(slice);
    m_checked += static_cast<std::int64_t>(slice.rows.size());
    m_failed += static_cast<std::int64_t>(slice.rows.size() - passing.size());
    if (passing.size() < slice.rows.size() && m_log.size() < m_logLimit)
        log(slice, passing);
}

void RulePass::log(const RowSlice& slice, std::span<const std::uint32_t> passing) {
    const auto rows = static_cast<std::uint32_t>(slice.rows.size());
    auto next = passing.begin();
    for (std::uint32_t row = 0; row < rows && m_log.size() < m_logLimit; ++row) {
        if (next != passing.end() && *next == row) {
            ++next;
            continue;
        }
        repository::RuleRow logged;
        logged.record = recordOf(slice, row);
        for (const std::size_t column : m_logColumns)
            logged.values.push_back(loggedText(slice.block.columns[column][slice.rows[row]]));
        m_log.push_back(std::move(logged));
    }
}

} // namespace tavix::profiling
