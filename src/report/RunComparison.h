#pragma once

#include "base/KvbDatavar.h"
#include "base/KvbString.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tavix {

class PrViewer;

/// One thing that differs between two runs of a job.
struct RunChange {
    enum class Subject {
        Table,
        Field,
        Records,      ///< a number of records of a table; `item` says which
        Metric,       ///< of a field; `item` is its name
        CustomMetric, ///< its value
        Expression,   ///< of a custom metric
        Rule,         ///< the rows that violate it, and their share of the checked ones
        Condition,    ///< of a rule
        Values,       ///< how many values are new, gone or moved, and the share of the rows that have them
        Value,        ///< the rows that have it
        Patterns,
        Pattern,
    };
    enum class Kind { New, Vanished, Changed };

    Subject subject = Subject::Table;
    Kind kind = Kind::Changed;
    std::string table;
    std::string field; ///< empty for what belongs to the table
    KvbString item;    ///< null for the null value and where there is no name
    KvbDatavar before; ///< null where there is none
    KvbDatavar after;
    std::optional<double> percentBefore; ///< of the field's rows; of a pattern, of those that are not null
    std::optional<double> percentAfter;
};

/// `after` less `before`, null unless both are numbers.
[[nodiscard]] KvbDatavar differenceOf(const RunChange& change);

struct RunComparisonOptions {
    std::size_t top = 10; ///< of the new, the vanished and the moved values and patterns of each field; 0 reads none
    std::optional<std::string> table = {}; ///< only this one
    std::function<void()> pulse = {};      ///< called now and then; what it throws ends the comparison
};

/// What differs between the current runs of two sessions with one repository, told to `sink` in an order that follows
/// from the runs alone: tables and fields as the later run has them, then those that vanished. Tables and fields are
/// the same when they have the same name. Both runs are only read; the sessions must be two. Throws GenException when
/// the repository fails.
void compareRuns(PrViewer& before, PrViewer& after, const RunComparisonOptions& options,
                 const std::function<void(const RunChange&)>& sink);

} // namespace tavix
