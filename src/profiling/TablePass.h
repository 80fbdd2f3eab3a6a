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

/// Profiles one table while the rows of its source pass by: counts its fields and evaluates its condition, its custom
/// metrics and its rules. Several tables may use the same rows.
class TablePass {
  public:
    /// `description` and the strings of `columns` must outlive the pass.
    TablePass(const job::TableDescription& description, std::span<const std::string> columns, TablePrograms programs);
    [[nodiscard]] const std::vector<ProgramRemark>& remarks() const { return m_programs.remarks; }

    /// A block is processed in two steps. prepare() selects the rows of the table and evaluates metrics and rules;
    /// `firstRecord` is the number of the block's first row in its source, from 1; `goOn` may end it when the run is
    /// cancelled. countColumn() counts a column or a part of its values (see ColumnValues.h); several threads may count
    /// different ones.
    void prepare(const source::RowBlock& block, std::int64_t firstRecord, const expression::GoOn& goOn);
    void countColumn(const source::RowBlock& block, std::size_t column, std::uint32_t part);
    /// Whether preparing this block changes what counting another one reads, so that both must not run at once.
    [[nodiscard]] bool preparingDisturbs(const source::RowBlock& block) const {
        return m_where || (m_keepsOffsetIndex && (block.offsets.empty() || m_offsets.empty()));
    }
    /// Keeps an offset index if the source says where its rows are. Call it before the first block.
    void keepOffsetIndex() { m_keepsOffsetIndex = true; }
    /// The offsets where the ranges of the columns' offset indexes begin, and the end of the last one. Empty without an
    /// index.
    [[nodiscard]] std::vector<std::int64_t> takeOffsets() { return std::move(m_offsets); }

    [[nodiscard]] const job::TableDescription& description() const { return m_description; }
    [[nodiscard]] std::span<const std::string> columns() const { return m_columns; }
    [[nodiscard]] ColumnValues& values(std::size_t column) { return m_values[column]; }
    /// For values that were counted by other means: the number of their rows.
    void setRows(std::int64_t rows) { m_rows = rows; }
    /// The rows that belong to the table.
    [[nodiscard]] std::int64_t rows() const { return m_rows; }

    /// Keeps a field's metrics for the custom metrics over metrics.
    void keepMetrics(std::size_t column, const std::array<KvbDatavar, kMetricCount>& metrics);
    /// Stores custom metrics and rules and logs what could not be evaluated. The writer must have the table's fields,
    /// and keepMetrics() must have been called for each.
    [[nodiscard]] Status storeRules(repository::RunWriter& writer, int tableId);

  private:
    [[nodiscard]] bool hasPrograms() const { return m_where || m_hasRowPrograms; }
    void takeOffsetIndex(const source::RowBlock& block);
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

    bool m_keepsOffsetIndex = false;
    std::vector<std::int64_t> m_offsets;
    std::vector<source::RowOffset> m_selectedPlaces; ///< of the current block, among m_selectedRows

    BlockColumns m_ruleColumns;
    std::vector<std::unique_ptr<MetricPass>>
        m_metricPasses; ///< parallel to the description's; null for a metric over metrics
    std::vector<std::unique_ptr<RulePass>> m_rulePasses;
    bool m_hasRowPrograms = false;
    std::vector<std::array<KvbDatavar, kMetricCount>> m_metrics; ///< by column, when a custom metric needs them
};

} // namespace tavix::profiling
