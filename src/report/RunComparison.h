#pragma once

#include "base/KvbDatavar.h"
#include "base/KvbString.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>

namespace tavix {

class PrViewer;

/// Items of RunChange::Subject::Records.
inline constexpr const char* kTotalRecords = "Total records";
inline constexpr const char* kProcessedRecords = "Processed records";

/// Whether a metric is that of the values that fit a narrower type (report/FitFigures.h), in which of two runs.
enum class FigureBasis { AllValues, Fits, FitsBefore, FitsAfter };

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
    /// The share of the rows that the change concerns, in percent; docs/definitions.md defines it. The changes that sum
    /// up the values or patterns of a field have the weight of all of them together.
    double weight = 0;
    bool followsRows = false;                   ///< follows from the number of records alone
    FigureBasis basis = FigureBasis::AllValues; ///< of a metric
};

/// Follows the name of a metric: "(fits)", "(fits in the later run only)"; "" for one of all values.
[[nodiscard]] std::string_view basisMark(FigureBasis basis);

/// `after` minus `before`; null unless both are numbers.
[[nodiscard]] KvbDatavar differenceOf(const RunChange& change);

struct RunComparisonOptions {
    std::size_t top = 10; ///< the limit for new, vanished and moved values and patterns of each field; 0 reads none
    std::optional<std::string> table = {}; ///< compares only this one
    /// Compares only these fields, as pairs of table and field, and of their tables only the numbers of records.
    std::optional<std::set<std::pair<std::string, std::string>>> fields = {};
    std::function<void()> pulse = {}; ///< called regularly; an exception from it ends the comparison
    /// Called as often: the table and its values that were compared, of all its values. An exception ends it too.
    std::function<void(const std::string& table, std::int64_t done, std::int64_t total)> progress = {};
};

/// Compares the current runs of two separate sessions with one repository and passes each difference to `sink`. Tables
/// and fields are matched by name. The order depends on the runs only: tables and fields as in the later run, then
/// those that vanished. Throws GenException when the repository fails.
void compareRuns(PrViewer& before, PrViewer& after, const RunComparisonOptions& options,
                 const std::function<void(const RunChange&)>& sink);

} // namespace tavix
