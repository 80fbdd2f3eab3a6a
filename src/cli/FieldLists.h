#pragma once

#include "cli/Listing.h"

#include <cstdint>
#include <limits>

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

/// A row for each field of the table.
void listMetrics(Session& session, Listing& listing, const TableEntry& table, MetricChoice choice);
/// All metrics of one field, as a record.
void listMetrics(Session& session, Listing& listing, const FieldEntry& field);
void listValues(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit);
void listPatterns(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit);
void listPercentiles(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit);
void listOutliers(Session& session, Listing& listing, const FieldEntry& field, std::int64_t limit);
/// What the current run reported while it was made.
void listLog(Session& session, Listing& listing, std::int64_t limit);

} // namespace tavix::cli
