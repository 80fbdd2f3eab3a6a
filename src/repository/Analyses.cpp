#include "repository/Analyses.h"

#include "repository/DistributionStore.h"
#include "repository/Existence.h"

#include <fmt/format.h>

namespace tavix::repository {

namespace {

constexpr std::string_view kRedundancy = "redundant data analysis";

/// Removes the rows of both tables.
Status removeKeyAnalysis(sql::Connection& connection, int run, int field, int otherField) {
    for (const char* sql : {"DELETE FROM distribution_block WHERE run = ?1 AND field = ?2 AND kind = 'K' AND "
                            "other_field = ?3",
                            "DELETE FROM key_analysis WHERE run = ?1 AND field = ?2 AND other_field = ?3"}) {
        auto statement = connection.prepare(sql);
        if (!statement)
            return statement.error();
        if (auto done = statement->bind(1, run).bind(2, field).bind(3, otherField).run(); !done)
            return done;
    }
    return {};
}

Status requireRedundancy(sql::Connection& connection, int redundancy) {
    return requireRow(connection, "SELECT 1 FROM redundancy WHERE id = ?1", redundancy, kRedundancy);
}

/// `id` -1: not created yet.
Status requireFreeName(sql::Connection& connection, std::string_view name, int id) {
    if (name.empty())
        return Error{"A redundant data analysis needs a name."};
    auto select = connection.prepare("SELECT 1 FROM redundancy WHERE name = ?1 AND id <> ?2");
    if (!select)
        return select.error();
    switch (select->bind(1, name).bind(2, id).step()) {
    case sql::Step::Row:
        return Error{fmt::format("There is a redundant data analysis \"{}\" already.", name)};
    case sql::Step::Done:
        return {};
    default:
        return Error{connection.errorText()};
    }
}

} // namespace

Status storeKeyAnalysis(sql::Connection& connection, const KeyAnalysis& analysis) {
    if (auto exists = requireRow(connection, "SELECT 1 FROM run WHERE id = ?1", analysis.run, "run"); !exists)
        return exists;
    if (auto removed = removeKeyAnalysis(connection, analysis.run, analysis.field, analysis.otherField); !removed)
        return removed;
    std::uint64_t sum = 0;
    for (const ValueCount& row : analysis.unmatched)
        sum += row.count;
    auto insert = connection.prepare("INSERT INTO key_analysis(run, field, other_field, match_percent, "
                                     "unmatched_rows, unmatched_sum) VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    if (!insert)
        return insert.error();
    insert->bind(1, analysis.run).bind(2, analysis.field).bind(3, analysis.otherField).bind(4, analysis.matchPercent);
    insert->bind(5, static_cast<std::int64_t>(analysis.unmatched.size())).bind(6, static_cast<std::int64_t>(sum));
    if (auto done = insert->run(); !done)
        return done;
    DistributionKey key{analysis.run, analysis.field, DistributionKind::Unmatched, analysis.otherField};
    return storeDistribution(connection, key, analysis.unmatched);
}

Status deleteKeyAnalysis(sql::Connection& connection, int run, int field, int otherField) {
    return removeKeyAnalysis(connection, run, field, otherField);
}

Result<int> addRedundancy(sql::Connection& connection, std::string_view name, std::string_view description) {
    if (auto checked = requireFreeName(connection, name, -1); !checked)
        return checked.error();
    auto insert = connection.prepare("INSERT INTO redundancy(name, description) VALUES(?1, ?2)");
    if (!insert)
        return insert.error();
    if (auto done = insert->bind(1, name).bind(2, description).run(); !done)
        return done.error();
    return static_cast<int>(connection.lastInsertId());
}

Status updateRedundancy(sql::Connection& connection, int redundancy, std::string_view name,
                        std::string_view description) {
    if (auto checked = requireFreeName(connection, name, redundancy); !checked)
        return checked;
    auto update = connection.prepare("UPDATE redundancy SET name = ?2, description = ?3 WHERE id = ?1");
    if (!update)
        return update.error();
    update->bind(1, redundancy).bind(2, name).bind(3, description);
    return changeRow(connection, *update, redundancy, kRedundancy);
}

Status deleteRedundancy(sql::Connection& connection, int redundancy) {
    auto statement = connection.prepare("DELETE FROM redundancy WHERE id = ?1");
    if (!statement)
        return statement.error();
    statement->bind(1, redundancy);
    return changeRow(connection, *statement, redundancy, kRedundancy);
}

Status addRedundancyField(sql::Connection& connection, int redundancy, int field) {
    if (auto exists = requireRedundancy(connection, redundancy); !exists)
        return exists;
    if (auto exists = requireField(connection, field); !exists)
        return exists;
    auto insert = connection.prepare("INSERT INTO redundancy_field(redundancy, position, field) SELECT ?1, "
                                     "COALESCE(MAX(position), 0) + 1, ?2 FROM redundancy_field WHERE redundancy = ?1 "
                                     "HAVING NOT EXISTS (SELECT 1 FROM redundancy_field WHERE redundancy = ?1 AND "
                                     "field = ?2)");
    if (!insert)
        return insert.error();
    if (auto done = insert->bind(1, redundancy).bind(2, field).run(); !done)
        return done;
    if (connection.changes() == 0)
        return Error{"The redundant data analysis has this field already."};
    return {};
}

Status clearRedundancyFields(sql::Connection& connection, int redundancy) {
    if (auto exists = requireRedundancy(connection, redundancy); !exists)
        return exists;
    auto statement = connection.prepare("DELETE FROM redundancy_field WHERE redundancy = ?1");
    if (!statement)
        return statement.error();
    return statement->bind(1, redundancy).run();
}

} // namespace tavix::repository
