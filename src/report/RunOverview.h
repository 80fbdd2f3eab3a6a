#pragma once

#include "base/TableKind.h"
#include "report/AlertStates.h"
#include "report/FindingRecords.h"
#include "report/RunInfo.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tavix {

class PrViewer;

/// A run as a whole, and what differs from the run before it.
struct RunOverview {
    struct Source {
        int id = -1;
        std::string name; ///< for text files, the folder
        bool isOfFiles = false;
    };
    struct Table {
        int id = -1;
        int source = -1;
        std::string name; ///< as shown
        TableKind kind = TableKind::Plain;
        std::int64_t records = -1; ///< of a filtered table, those that pass; -1 when it is not known
        std::int64_t damaged = 0;
        std::int64_t fields = 0;
    };
    struct Field {
        int id = -1;
        int table = -1;
        std::string name;
        std::int64_t nulls = 0;
        double nullPercent = 0;
    };
    struct Rule {
        int id = -1;
        int table = -1;
        std::string name;
        std::int64_t failed = 0;  ///< rows that violate it
        std::int64_t checked = 0; ///< rows
    };

    RunInfo run;
    double seconds = 0;            ///< how long it took
    std::optional<RunInfo> before; ///< the run before it, if there is one
    std::vector<Source> sources;
    std::vector<Table> tables; ///< in the order of the run
    std::vector<Table> tablesBefore;
    /// Fields of the run that have nulls, the largest share first.
    std::vector<Field> fieldsWithNulls;
    /// Of tables that both runs have.
    std::vector<Field> newFields;
    std::vector<Field> vanishedFields;
    std::vector<Rule> violatedRules;      ///< the largest share of the checked rows first
    std::vector<AlertState> raisedAlerts; ///< errors first, then in the order of the job
    std::vector<AlertState> otherAlerts;  ///< that cannot be judged, then muted ones, then quiet ones
    bool isExamined = false;              ///< false for a run that looked for no findings
    std::vector<FindingRecord> findings;  ///< that nobody has dismissed, the gravest first
};

/// The overview of the current run of that job. The number of queries does not depend on tables, fields or runs, except
/// as readAlertStates() says. Throws GenException when the repository fails.
[[nodiscard]] RunOverview readRunOverview(PrViewer& viewer, int job);

} // namespace tavix
