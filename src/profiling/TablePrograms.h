#pragma once

#include "base/Clock.h"
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

/// A metric of a table that an expression over metrics may name.
struct MetricField {
    std::string name;
    expression::Type type = expression::Type::Text;
    std::optional<std::size_t> column; ///< of a field's metric
    MetricId metric = MetricId::Count; ///< of that column
};

/// A remark on an expression that probably does not mean what its author thinks.
struct ProgramRemark {
    std::string place; ///< its position in the job file, as in errors
    std::string text;
};

/// The compiled expressions of one table. Those over rows are compiled for the columns, which are texts.
struct TablePrograms {
    std::optional<expression::Program> where;
    std::vector<expression::Program> metrics; ///< parallel to the description's
    std::vector<expression::Program> rules;   ///< parallel to the description's
    std::vector<std::size_t> key;             ///< columns
    /// The fields of the metrics over metrics: "Records", the metrics of each column as "FIELD:METRIC", then the custom
    /// metrics of the table, each for those after it. Empty when there are no metrics over metrics.
    std::vector<MetricField> figures;
    std::vector<ProgramRemark> remarks;

    /// The columns, or for a metric over metrics the metrics, that the custom metric reads.
    [[nodiscard]] std::vector<repository::MetricInput> inputsOf(std::size_t metric, bool isOverMetrics,
                                                                std::span<const std::string> columns) const;
};

/// The columns that a program over rows uses.
[[nodiscard]] std::vector<std::size_t> usedColumns(const expression::Program& program);

/// Errors begin with the position in the job file and name line and column within the expression. `now` is the moment
/// that now() means in all of them.
[[nodiscard]] Result<TablePrograms> compileTable(const job::TableDescription& table,
                                                 std::span<const std::string> columns, UtcTime now);

} // namespace tavix::profiling
