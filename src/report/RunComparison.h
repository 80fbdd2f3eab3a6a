#pragma once

#include "base/KvbDatavar.h"
#include "base/KvbString.h"

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

namespace tavix {

class PrViewer;

/// A difference between two runs of a job.
struct RunChange {
    enum class Subject {
        Table,
        Field,
        Records,      ///< a number of records of a table; `item` names the number
        Metric,       ///< of a field; `item` is its name
        CustomMetric, ///< the value of one; `item` is its name
        Expression,   ///< of a custom metric
        Rule,         ///< the rows that violate it, and their share of the checked ones
        Condition,    ///< of a rule
        Values,       ///< the number of values that are new, vanished or moved, and their share of the rows
        Value,        ///< the rows that have it
        Patterns,
        Pattern,
    };
    enum class Kind { New, Vanished, Changed };

    Subject subject = Subject::Table;
    Kind kind = Kind::Changed;
    std::string table;
    std::string field; ///< empty for a change of the table itself
    KvbString item;    ///< null for the null value and for a change without a name
    KvbDatavar before; ///< null where there is none
    KvbDatavar after;
    std::optional<double> percentBefore; ///< of the rows; for a pattern, of the rows that are not null
    std::optional<double> percentAfter;
};

/// `after` minus `before`; null unless both are numbers.
[[nodiscard]] KvbDatavar differenceOf(const RunChange& change);

struct RunComparisonOptions {
    std::size_t top = 10; ///< the limit for new, vanished and moved values and patterns of each field; 0 reads none
    std::optional<std::string> table = {}; ///< compares only this one
    std::function<void()> pulse = {};      ///< called regularly; an exception from it ends the comparison
};

/// Compares the current runs of two separate sessions with one repository and passes each difference to `sink`. Tables
/// and fields are matched by name. The order depends on the runs only: tables and fields as in the later run, then
/// those that vanished. Throws GenException when the repository fails.
void compareRuns(PrViewer& before, PrViewer& after, const RunComparisonOptions& options,
                 const std::function<void(const RunChange&)>& sink);

} // namespace tavix
