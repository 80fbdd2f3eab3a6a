#include "repository/Collections.h"

#include "repository/BindValue.h"

#include <fmt/format.h>

namespace tavix::repository {

namespace {

/// The fields of table ?1 that are in no run.
constexpr std::string_view kStaleFields = "(SELECT f.id FROM field f WHERE f.table_id = ?1 AND NOT EXISTS "
                                          "(SELECT 1 FROM run_field rf JOIN run r ON r.id = rf.run "
                                          "WHERE rf.field = f.id))";

} // namespace

Result<int> collectionIdentity(sql::Connection& connection, std::string_view name, std::string_view description,
                               UtcTime now) {
    auto insert = connection.prepare("INSERT INTO collection(name, description, created) VALUES(?1, ?2, ?3) "
                                     "ON CONFLICT(name) DO UPDATE SET description = "
                                     "CASE WHEN ?2 <> '' THEN ?2 ELSE description END RETURNING id");
    if (!insert)
        return insert.error();
    insert->bind(1, name).bind(2, description).bind(3, storedTime(now));
    if (insert->step() != sql::Step::Row)
        return Error{connection.errorText()};
    int id = static_cast<int>(insert->integer(0));
    // The change takes effect at the end of the statement.
    if (insert->step() != sql::Step::Done)
        return Error{connection.errorText()};
    return id;
}

Result<bool> collectionHolds(sql::Connection& connection, int collection, int field) {
    auto select = connection.prepare("SELECT 1 FROM collection_field WHERE collection = ?1 AND field = ?2");
    if (!select)
        return select.error();
    sql::Step step = select->bind(1, collection).bind(2, field).step();
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    return step == sql::Step::Row;
}

Status addToCollection(sql::Connection& connection, int collection, int field) {
    auto insert = connection.prepare("INSERT INTO collection_field(collection, position, field) SELECT ?1, "
                                     "COALESCE(MAX(position), 0) + 1, ?2 FROM collection_field WHERE collection = ?1");
    if (!insert)
        return insert.error();
    return insert->bind(1, collection).bind(2, field).run();
}

Result<bool> hasStaleFields(sql::Connection& connection, int table) {
    auto select =
        connection.prepare(fmt::format("SELECT 1 FROM collection_field WHERE field IN {} LIMIT 1", kStaleFields));
    if (!select)
        return select.error();
    sql::Step step = select->bind(1, table).step();
    if (step == sql::Step::Failed)
        return Error{connection.errorText()};
    return step == sql::Step::Row;
}

Status removeStaleFields(sql::Connection& connection, int table) {
    auto remove = connection.prepare(fmt::format("DELETE FROM collection_field WHERE field IN {}", kStaleFields));
    if (!remove)
        return remove.error();
    return remove->bind(1, table).run();
}

} // namespace tavix::repository
