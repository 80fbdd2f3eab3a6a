#pragma once

#include <cstdint>
#include <string>

/// Custom metrics and business rules of the current run. Each list is written as one section.
namespace tavix::cli {

class Listing;
class Session;
struct TableEntry;

/// A rule of the current run.
struct RuleEntry {
    int id = -1;
    std::string name;
    std::string table;
    std::int64_t failedRows = 0;
    std::int64_t loggedRows = 0;
};

[[nodiscard]] bool hasCustomMetrics(Session& session, const TableEntry& table);
[[nodiscard]] bool hasRules(Session& session, const TableEntry& table);

void listCustomMetrics(Session& session, Listing& listing, const TableEntry& table);
/// Of one table, or of all when `table` is null.
void listRules(Session& session, Listing& listing, const TableEntry* table);
/// The rule of this name in the table, or in any when `table` is null. Throws CommandError when there is none or more
/// than one.
[[nodiscard]] RuleEntry findRule(Session& session, const std::string& name, const TableEntry* table);
/// The rows that violate the rule, with the table's key and the fields that the condition reads.
void listViolations(Session& session, Listing& listing, const RuleEntry& rule, std::int64_t limit);

} // namespace tavix::cli
