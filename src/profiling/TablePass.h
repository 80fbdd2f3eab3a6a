#pragma once

#include "profiling/BlockColumns.h"
#include "profiling/ColumnValues.h"
#include "profiling/RowPrograms.h"
#include "profiling/TablePrograms.h"
#include "repository/RunWriter.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace tavix::profiling {

/// One table while the rows of its source pass by: the counters of its fields, its condition when it is a filtered one,
/// its custom metrics and its rules. Any number of tables may look at the same rows.
class TablePass {
  public:
    /// `description` and `columns` must outlive the pass.
    TablePass(const job::TableDescription& description, std::span<const std::string> columns, TablePrograms programs);
    [[nodiscard]] const std::vector<ProgramRemark>& remarks() const { return m_programs.remarks; }

    /// A block of rows is taken in two steps. The first finds the rows that belong to the table and hands them to
    /// metrics and rules; `firstRecord` is the number of the block's first row in its source, from 1. The second
    /// counts a column, or a part of its values (ColumnValues.h); several threads may count, each something else.
    /// `goOn` may end the first one, when the run is given up.
    void prepare(const source::RowBlock& block, std::int64_t firstRecord, const expression::GoOn& goOn);
    void countColumn(const source::RowBlock& block, std::size_t column, std::uint32_t part);
    /// Whether the first step changes what the second looks at, so that no other block may be in it meanwhile.
    [[nodiscard]] bool preparingDisturbs(const source::RowBlock& block) const {
        return m_where || (m_keepsPlaces && (block.offsets.empty() || m_offsets.empty()));
    }
    /// To note where in the file the values stand, if the source says where its rows do; before the first block.
    void keepPlaces() { m_keepsPlaces = true; }
    /// Where the ranges begin to which the columns' places refer, and behind them where the last one ends. Empty when
    /// they are not kept.
    [[nodiscard]] std::vector<std::int64_t> takeOffsets() { return std::move(m_offsets); }

    [[nodiscard]] const job::TableDescription& description() const { return m_description; }
    [[nodiscard]] std::span<const std::string> columns() const { return m_columns; }
    [[nodiscard]] ColumnValues& values(std::size_t column) { return m_values[column]; }
    /// Instead of taking blocks: the values were counted by other means, in this many rows.
    void setRows(std::int64_t rows) { m_rows = rows; }
    /// Rows that belong to the table.
    [[nodiscard]] std::int64_t rows() const { return m_rows; }

    /// A field's figures, for the custom metrics over metrics.
    void keepMetrics(std::size_t column, const std::array<KvbDatavar, kMetricCount>& metrics);
    /// Stores custom metrics and rules and logs what could not be evaluated. The table's fields must stand in the
    /// writer, and their figures must have been kept.
    [[nodiscard]] Status storeRules(repository::RunWriter& writer, int tableId);

  private:
    [[nodiscard]] bool hasPrograms() const { return m_where || m_hasRowPrograms; }
    void takePlaces(const source::RowBlock& block);
    void select(const source::RowBlock& block, std::int64_t firstRecord, const expression::GoOn& goOn);
    void evaluate(const source::RowBlock& block, std::int64_t firstRecord, const expression::GoOn& goOn);
    Status storeMetrics(repository::RunWriter& writer, int tableId);
    Status log(repository::RunWriter& writer, int tableId, const std::string& what, const RowFailures& failures) const;

    const job::TableDescription& m_description;
    std::span<const std::string> m_columns;
    TablePrograms m_programs;
    std::vector<ColumnValues> m_values;
    std::int64_t m_rows = 0;

    std::optional<ConditionPass> m_where;
    BlockColumns m_whereColumns;
    std::vector<std::uint32_t> m_allRows;      ///< 0, 1, 2, ...
    std::vector<std::uint32_t> m_selectedRows; ///< of the current block

    bool m_keepsPlaces = false;
    std::vector<std::int64_t> m_offsets;
    std::vector<source::RowOffset> m_selectedPlaces; ///< of the current block, among m_selectedRows

    BlockColumns m_ruleColumns;
    std::vector<std::unique_ptr<MetricPass>> m_metricPasses; ///< beside the description's; null over metrics
    std::vector<std::unique_ptr<RulePass>> m_rulePasses;
    bool m_hasRowPrograms = false;
    std::vector<std::array<KvbDatavar, kMetricCount>> m_metrics; ///< by column, when a custom metric needs them
};

} // namespace tavix::profiling
