#pragma once

#include "base/Result.h"
#include "expression/Program.h"
#include "job/JobDescription.h"
#include "repository/Facts.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tavix::profiling {

/// A figure of a table that an expression over its metrics may name.
struct MetricField {
    std::string name;
    expression::Type type = expression::Type::Text;
    std::optional<std::size_t> column; ///< of a field's metric
    MetricId metric = MetricId::Count; ///< of that column
};

/// On an expression that probably does not mean what its author thinks.
struct ProgramRemark {
    std::string place; ///< in the job file, as in errors
    std::string text;
};

/// The expressions of one table, compiled once for a run. Over rows they are compiled for the columns, which are texts.
struct TablePrograms {
    std::optional<expression::Program> where;
    std::vector<expression::Program> metrics; ///< beside the description's
    std::vector<expression::Program> rules;   ///< beside the description's
    std::vector<std::size_t> key;             ///< columns
    /// What the metrics over metrics are compiled for: "Records", the 24 metrics of each column as "FIELD:METRIC", then
    /// the custom metrics of the table, each for those that follow it. Empty when there is none.
    std::vector<MetricField> figures;
    std::vector<ProgramRemark> remarks;

    /// The columns, and over metrics the metrics, that the custom metric reads.
    [[nodiscard]] std::vector<repository::MetricInput> inputsOf(std::size_t metric, bool isOverMetrics,
                                                                std::span<const std::string> columns) const;
};

/// The columns that a program over rows uses.
[[nodiscard]] std::vector<std::size_t> usedColumns(const expression::Program& program);

/// Errors begin with the place in the job file and name the line and column within the expression.
[[nodiscard]] Result<TablePrograms> compileTable(const job::TableDescription& table,
                                                 std::span<const std::string> columns);

} // namespace tavix::profiling
