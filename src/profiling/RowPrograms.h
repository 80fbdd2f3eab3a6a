#pragma once

#include "blocks/BlockEvaluator.h"
#include "blocks/BlockValues.h"
#include "profiling/RowAggregate.h"
#include "repository/Facts.h"
#include "source/RowReader.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavix::profiling {

/// Rows of a source that are evaluated together.
struct RowSlice {
    const source::RowBlock& block;
    std::span<const std::uint32_t> rows; ///< indexes into the block, ascending
    const expression::Block& values;     ///< of these rows
    std::int64_t firstRecord = 1;        ///< number of the block's first row in its source
    const expression::GoOn& goOn;        ///< when it returns false, the results are not needed any more
};

/// Counts the rows for which an expression could not be evaluated.
class RowFailures {
  public:
    void add(const RowSlice& slice, const expression::BlockFailures& failures);
    [[nodiscard]] std::int64_t count() const { return m_count; }
    /// "3 rows could not be evaluated; the first is row 17: ...". Call it only when there are some.
    [[nodiscard]] std::string text() const;

  private:
    std::int64_t m_count = 0;
    std::int64_t m_firstRecord = 0;
    std::string m_reason;
};

/// A condition that is evaluated slice by slice.
class ConditionPass {
  public:
    explicit ConditionPass(const expression::Program& program) : m_evaluator(program) {}

    /// The rows of the slice, counted from 0, for which the condition is true; valid until the next call.
    [[nodiscard]] std::span<const std::uint32_t> passing(const RowSlice& slice);
    [[nodiscard]] const RowFailures& failures() const { return m_failures; }

  private:
    expression::BlockEvaluator m_evaluator;
    RowFailures m_failures;
};

/// A custom metric over rows that is evaluated slice by slice.
class MetricPass {
  public:
    MetricPass(job::Figure figure, const expression::Program& program);

    void take(const RowSlice& slice);
    [[nodiscard]] KvbDatavar result() const;
    /// The rows that were counted, or whose value was used.
    [[nodiscard]] std::int64_t usedRows() const;
    [[nodiscard]] const RowFailures& failures() const;

  private:
    std::optional<ConditionPass> m_condition; ///< of a count
    std::int64_t m_rows = 0;
    std::optional<expression::BlockValues> m_values; ///< of the other functions
    RowAggregate m_aggregate;
    RowFailures m_failures;
};

/// A rule that is evaluated slice by slice.
class RulePass {
  public:
    /// `logColumns`: the columns that the row log keeps.
    RulePass(const expression::Program& program, std::vector<std::size_t> logColumns, std::size_t logLimit);

    void take(const RowSlice& slice);
    [[nodiscard]] std::int64_t checkedRows() const { return m_checked; }
    [[nodiscard]] std::int64_t failedRows() const { return m_failed; }
    [[nodiscard]] const RowFailures& failures() const { return m_condition.failures(); }
    [[nodiscard]] std::span<const std::size_t> logColumns() const { return m_logColumns; }
    [[nodiscard]] std::vector<repository::RuleRow> takeLog() { return std::move(m_log); }

  private:
    void log(const RowSlice& slice, std::span<const std::uint32_t> passing);

    ConditionPass m_condition;
    std::vector<std::size_t> m_logColumns;
    std::size_t m_logLimit;
    std::int64_t m_checked = 0;
    std::int64_t m_failed = 0;
    std::vector<repository::RuleRow> m_log;
};

} // namespace tavix::profiling
