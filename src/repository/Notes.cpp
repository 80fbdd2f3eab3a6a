#include "repository/Notes.h"

#include "repository/Existence.h"

#include <fmt/format.h>

namespace tavix::repository {

namespace {

constexpr std::string_view kCategory = "note category";

Status requireCategory(sql::Connection& connection, int category) {
    if (category == -1)
        return {};
    return requireRow(connection, "SELECT 1 FROM note_category WHERE id = ?1", category, kCategory);
}

void bindCategory(sql::Statement& statement, int parameter, int category) {
    if (category == -1)
        statement.bindNull(parameter);
    else
        statement.bind(parameter, category);
}

Status deleteById(sql::Connection& connection, std::string_view sql, int id, std::string_view what) {
    auto statement = connection.prepare(sql);
    if (!statement)
        return statement.error();
    statement->bind(1, id);
    return changeRow(connection, *statement, id, what);
}

/// `id` -1 for a category that is still to be made.
Status requireFreeName(sql::Connection& connection, std::string_view name, int id) {
    if (name.empty())
        return Error{"A note category needs a name."};
    auto select = connection.prepare("SELECT 1 FROM note_category WHERE name = ?1 AND id <> ?2");
    if (!select)
        return select.error();
    switch (select->bind(1, name).bind(2, id).step()) {
    case sql::Step::Row:
        return Error{fmt::format("There is a note category \"{}\" already.", name)};
    case sql::Step::Done:
        return {};
    default:
        return Error{connection.errorText()};
    }
}

} // namespace

Status addTableNote(sql::Connection& connection, NoteOwner kind, int owner, int category, std::string_view author,
                    std::string_view text, UtcTime written) {
    Status exists = kind == NoteOwner::Table ? requireTable(connection, owner) : requireCollection(connection, owner);
    if (!exists)
        return exists;
    if (auto checked = requireCategory(connection, category); !checked)
        return checked;
    auto insert = connection.prepare("INSERT INTO table_note(owner_kind, owner, category, author, written, text) "
                                     "VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    if (!insert)
        return insert.error();
    char letter = static_cast<char>(kind);
    insert->bind(1, std::string_view(&letter, 1)).bind(2, owner);
    bindCategory(*insert, 3, category);
    insert->bind(4, author).bind(5, static_cast<std::int64_t>(written.time_since_epoch().count())).bind(6, text);
    return insert->run();
}

Status addFieldNote(sql::Connection& connection, int field, int category, std::string_view author,
                    std::string_view text, UtcTime written) {
    if (auto exists = requireField(connection, field); !exists)
        return exists;
    if (auto checked = requireCategory(connection, category); !checked)
        return checked;
    auto insert = connection.prepare("INSERT INTO field_note(field, category, author, written, text) "
                                     "VALUES(?1, ?2, ?3, ?4, ?5)");
    if (!insert)
        return insert.error();
    insert->bind(1, field);
    bindCategory(*insert, 2, category);
    insert->bind(3, author).bind(4, static_cast<std::int64_t>(written.time_since_epoch().count())).bind(5, text);
    return insert->run();
}

Status deleteTableNote(sql::Connection& connection, int note) {
    return deleteById(connection, "DELETE FROM table_note WHERE id = ?1", note, "note");
}

Status deleteFieldNote(sql::Connection& connection, int note) {
    return deleteById(connection, "DELETE FROM field_note WHERE id = ?1", note, "note");
}

Status addNoteCategory(sql::Connection& connection, std::string_view name) {
    if (auto checked = requireFreeName(connection, name, -1); !checked)
        return checked;
    auto insert = connection.prepare("INSERT INTO note_category(name) VALUES(?1)");
    if (!insert)
        return insert.error();
    return insert->bind(1, name).run();
}

Status renameNoteCategory(sql::Connection& connection, int category, std::string_view name) {
    if (auto checked = requireFreeName(connection, name, category); !checked)
        return checked;
    auto update = connection.prepare("UPDATE note_category SET name = ?2 WHERE id = ?1");
    if (!update)
        return update.error();
    update->bind(1, category).bind(2, name);
    return changeRow(connection, *update, category, kCategory);
}

Status deleteNoteCategory(sql::Connection& connection, int category) {
    return deleteById(connection, "DELETE FROM note_category WHERE id = ?1", category, kCategory);
}

} // namespace tavix::repository
