#include "repository/Identities.h"

#include "repository/BindValue.h"

namespace tavix::repository {

namespace {

/// Runs the bound `find`; if it has no row, the bound `insert`.
Result<int> findOrMake(sql::Connection& connection, sql::Statement& find, sql::Statement& insert) {
    switch (find.step()) {
    case sql::Step::Row: {
        int id = static_cast<int>(find.integer(0));
        find.reset();
        return id;
    }
    case sql::Step::Failed:
        return Error{connection.errorText()};
    case sql::Step::Done:
        break;
    }
    if (auto made = insert.run(); !made)
        return made.error();
    return static_cast<int>(connection.lastInsertId());
}

} // namespace

std::string_view displayName(const TableFacts& table) {
    return table.objectName.empty() ? table.name : table.objectName;
}

Result<int> jobIdentity(sql::Connection& connection, std::string_view name, std::string_view description, UtcTime now) {
    auto find = connection.prepare("SELECT id FROM job WHERE name = ?1");
    auto insert = connection.prepare("INSERT INTO job(name, created) VALUES(?1, ?2)");
    auto describe = connection.prepare("UPDATE job SET description = ?2 WHERE id = ?1");
    if (!find || !insert || !describe)
        return Error{connection.errorText()};
    find->bind(1, name);
    insert->bind(1, name).bind(2, storedTime(now));
    auto id = findOrMake(connection, *find, *insert);
    if (!id || description.empty())
        return id;
    if (auto described = describe->bind(1, *id).bind(2, description).run(); !described)
        return described.error();
    return id;
}

Result<int> dataSourceIdentity(sql::Connection& connection, std::string_view name, SourceKind kind) {
    auto find = connection.prepare("SELECT id FROM data_source WHERE name = ?1 AND kind = ?2");
    auto insert = connection.prepare("INSERT INTO data_source(name, kind) VALUES(?1, ?2)");
    if (!find || !insert)
        return Error{connection.errorText()};
    for (auto* statement : {&*find, &*insert})
        statement->bind(1, name).bind(2, static_cast<int>(kind));
    return findOrMake(connection, *find, *insert);
}

Result<int> tableIdentity(sql::Connection& connection, int dataSource, const TableFacts& table) {
    auto find = connection.prepare("SELECT id FROM profiled_table WHERE data_source = ?1 AND catalog = ?2 AND "
                                   "schema = ?3 AND name = ?4 AND object_name = ?5 AND kind = ?6");
    auto insert = connection.prepare("INSERT INTO profiled_table(data_source, catalog, schema, name, object_name, "
                                     "kind) VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    if (!find || !insert)
        return Error{connection.errorText()};
    char kind = static_cast<char>(table.kind);
    for (auto* statement : {&*find, &*insert}) {
        statement->bind(1, dataSource).bind(2, table.catalog).bind(3, table.schema).bind(4, table.name);
        statement->bind(5, table.objectName).bind(6, std::string_view(&kind, 1));
    }
    return findOrMake(connection, *find, *insert);
}

Result<int> fieldIdentity(sql::Connection& connection, int table, std::string_view name) {
    auto find = connection.prepare("SELECT id FROM field WHERE table_id = ?1 AND name = ?2");
    auto insert = connection.prepare("INSERT INTO field(table_id, name) VALUES(?1, ?2)");
    if (!find || !insert)
        return Error{connection.errorText()};
    for (auto* statement : {&*find, &*insert})
        statement->bind(1, table).bind(2, name);
    return findOrMake(connection, *find, *insert);
}

Result<int> fieldOfRun(sql::Connection& connection, int run, int table, std::string_view name, const Error& missing) {
    auto find = connection.prepare("SELECT f.id FROM field f JOIN run_field rf ON rf.field = f.id AND rf.run = ?1 "
                                   "WHERE f.table_id = ?2 AND f.name = ?3");
    if (!find)
        return find.error();
    if (Status found = find->bind(1, run).bind(2, table).bind(3, name).stepToRow(missing); !found)
        return found.error();
    return static_cast<int>(find->integer(0));
}

} // namespace tavix::repository
