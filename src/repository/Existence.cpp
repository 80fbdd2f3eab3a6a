#include "repository/Existence.h"

#include <fmt/format.h>

namespace tavix::repository {

namespace {

Error missing(std::string_view what, int id) {
    return Error{fmt::format("There is no {} with the number {}.", what, id)};
}

} // namespace

Status requireRow(sql::Connection& connection, std::string_view sql, int id, std::string_view what) {
    auto select = connection.prepare(sql);
    if (!select)
        return select.error();
    return select->bind(1, id).stepToRow(missing(what, id));
}

Result<std::int64_t> readNumber(sql::Connection& connection, std::string_view sql,
                                std::initializer_list<std::int64_t> parameters) {
    auto select = connection.prepare(sql);
    if (!select)
        return select.error();
    int number = 0;
    for (std::int64_t parameter : parameters)
        select->bind(++number, parameter);
    if (Status found = select->stepToRow({"A row of the repository is missing."}); !found)
        return found.error();
    return select->integer(0);
}

Status requireTable(sql::Connection& connection, int table) {
    return requireRow(connection, "SELECT 1 FROM profiled_table WHERE id = ?1", table, "table");
}

Status requireField(sql::Connection& connection, int field) {
    return requireRow(connection, "SELECT 1 FROM field WHERE id = ?1", field, "field");
}

Status requireCollection(sql::Connection& connection, int collection) {
    return requireRow(connection, "SELECT 1 FROM collection WHERE id = ?1", collection, "collection");
}

Status changeRow(sql::Connection& connection, sql::Statement& statement, int id, std::string_view what) {
    if (auto done = statement.run(); !done)
        return done;
    if (connection.changes() == 0)
        return missing(what, id);
    return {};
}

} // namespace tavix::repository
