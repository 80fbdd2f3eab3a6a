#pragma once

#include "cli/Listing.h"
#include "report/ReportSelection.h"

#include <cstdint>
#include <limits>
#include <string>

/// The lists of a field's profile. Each is one section of the result.
namespace tavix::cli {

class Session;
struct ChosenField;

enum class MetricChoice {
    Main, ///< the few that describe a field best
    All,
};

inline constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();

/// Notes on standard error that the metrics of the table are those of a sample. No message for a whole table.
void saySample(const TableIdentity& table);
/// A row for each field of the table.
void listMetrics(Session& session, Listing& listing, const TableIdentity& table, MetricChoice choice);
/// All metrics of one field, as a record.
void listMetrics(Session& session, Listing& listing, const ChosenField& field);
/// Which types the values of a field fit: in text the forms below a sentence, in JSON also a record.
void listTypes(Session& session, Listing& listing, const ChosenField& field, std::int64_t limit);
/// The rows of a distribution to list. Standard error names the rows for which the filter could not be evaluated.
struct RowChoice {
    std::int64_t limit = kNoLimit;
    std::string filter = {}; ///< "" lists all rows
};
void listValues(Session& session, Listing& listing, const ChosenField& field, const RowChoice& choice);
void listPatterns(Session& session, Listing& listing, const ChosenField& field, const RowChoice& choice);
void listPercentiles(Session& session, Listing& listing, const ChosenField& field, std::int64_t limit);
void listOutliers(Session& session, Listing& listing, const ChosenField& field, std::int64_t limit);
/// The execution log of the current run.
void listLog(Session& session, Listing& listing, std::int64_t limit);

} // namespace tavix::cli
