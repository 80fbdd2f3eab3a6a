#pragma once

#include "cli/Listing.h"

#include <cstdint>
#include <limits>
#include <string>

/// The lists that a field's profile consists of. Each is written as one section.
namespace tavix::cli {

class Session;
struct FieldEntry;
struct TableEntry;

enum class MetricChoice {
    Main, ///< what tells most of a field at one glance
    All,
};

inline constexpr std::int64_t kNoLimit = std::numeric_limits<std::int64_t>::max();

/// Tells on standard error that the figures of the table are those of a sample; nothing for a whole table.
void saySample(const TableEntry& table);
/// A row for each field of the table.
void listMetrics(Session& session, Listing& listing, const TableEntry& table, MetricChoice choice);
/// All metrics of one field, as a record.
void listMetrics(Session& session, Listing& listing, const FieldEntry& field);
/// Which rows of a distribution are listed. Rows that the filter text cannot be evaluated for are told on standard
/// error.
struct RowChoice {
    std::int64_t limit = kNoLimit;
    std::string filter = {}; ///< empty lets all pass
};
void listValues(Session& session, Listing& listing, const FieldEntry& field, const RowChoice& choice);
void listPatterns(Session& session, Listing& listing, const FieldEntry& field, const RowChoice& choice);
void listPercentiles(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit);
void listOutliers(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit);
/// What the current run reported while it was made.
void listLog(Session& session, Listing& listing, std::int64_t limit);

} // namespace tavix::cli
