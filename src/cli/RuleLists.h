#pragma once

#include "report/ReportSelection.h"

#include <cstdint>
#include <string>

/// Custom metrics and business rules of the current run. Each list is one section of the result.
namespace tavix::cli {

class Listing;
class Session;

/// A rule of the current run.
struct RuleEntry {
    int id = -1;
    std::string name;
    std::string table;
    std::int64_t failedRows = 0;
    std::int64_t loggedRows = 0;
};

[[nodiscard]] bool hasCustomMetrics(Session& session, const TableIdentity& table);
[[nodiscard]] bool hasRules(Session& session, const TableIdentity& table);

void listCustomMetrics(Session& session, Listing& listing, const TableIdentity& table);
/// The rules of one table, or of all tables when `table` is null.
void listRules(Session& session, Listing& listing, const TableIdentity* table);
/// The rule of this name in the table, or in any table when `table` is null. Throws CommandError unless there is
/// exactly one.
[[nodiscard]] RuleEntry findRule(Session& session, const std::string& name, const TableIdentity* table);
/// Lists the rows that violate the rule, with the table's key and the fields that the condition reads.
void listViolations(Session& session, Listing& listing, const RuleEntry& rule, std::int64_t limit);

} // namespace tavix::cli
