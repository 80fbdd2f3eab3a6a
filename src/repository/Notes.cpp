#include "repository/Notes.h"

#include "base/NoteText.h"
#include "repository/BindValue.h"
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

/// `id` -1: not created yet.
Status requireFreeName(sql::Connection& connection, std::string_view name, int id) {
    auto select = connection.prepare("SELECT name FROM note_category WHERE id <> ?1");
    if (!select)
        return select.error();
    select->bind(1, id);
    for (sql::Step step = select->step();; step = select->step()) {
        if (step == sql::Step::Done)
            return {};
        if (step != sql::Step::Row)
            return Error{connection.errorText()};
        if (const std::string_view other = select->text(0); isSameNoteCategory(other, name))
            return Error{fmt::format("There is a note category \"{}\" already.", other)};
    }
}

Status requireOwner(sql::Connection& connection, NoteOwner kind, int owner) {
    return kind == NoteOwner::Table ? requireTable(connection, owner) : requireCollection(connection, owner);
}

/// The owner of a note has no foreign key.
Status requireOwnerOf(sql::Connection& connection, int note) {
    auto select = connection.prepare("SELECT owner_kind, owner FROM table_note WHERE id = ?1");
    if (!select)
        return select.error();
    switch (select->bind(1, note).step()) {
    case sql::Step::Row:
        return requireOwner(connection, select->text(0) == "C" ? NoteOwner::Collection : NoteOwner::Table,
                            static_cast<int>(select->integer(1)));
    case sql::Step::Done:
        return {}; // changeRow() reports the missing note
    default:
        return Error{connection.errorText()};
    }
}

/// The text to store; fails unless it is valid, the owner exists, and the category does.
Result<std::string> checkedNote(sql::Connection& connection, const Status& ownerExists, int category,
                                std::string_view text) {
    std::string tidied = tidyNote(text);
    if (auto checked = checkNote(tidied); !checked)
        return checked.error();
    if (!ownerExists)
        return ownerExists.error();
    if (auto checked = requireCategory(connection, category); !checked)
        return checked.error();
    return tidied;
}

Status changeNote(sql::Connection& connection, std::string_view sql, int note, int category, std::string_view text) {
    const auto tidied = checkedNote(connection, {}, category, text);
    if (!tidied)
        return tidied.error();
    auto update = connection.prepare(sql);
    if (!update)
        return update.error();
    bindCategory(*update, 2, category);
    update->bind(1, note).bind(3, std::string_view(*tidied));
    return changeRow(connection, *update, note, "note");
}

} // namespace

Status addTableNote(sql::Connection& connection, NoteOwner kind, int owner, int category, std::string_view author,
                    std::string_view text, UtcTime written) {
    const auto tidied = checkedNote(connection, requireOwner(connection, kind, owner), category, text);
    if (!tidied)
        return tidied.error();
    auto insert = connection.prepare("INSERT INTO table_note(owner_kind, owner, category, author, written, text) "
                                     "VALUES(?1, ?2, ?3, ?4, ?5, ?6)");
    if (!insert)
        return insert.error();
    char letter = static_cast<char>(kind);
    insert->bind(1, std::string_view(&letter, 1)).bind(2, owner);
    bindCategory(*insert, 3, category);
    insert->bind(4, author).bind(5, storedTime(written));
    insert->bind(6, std::string_view(*tidied));
    return insert->run();
}

Status addFieldNote(sql::Connection& connection, int field, int category, std::string_view author,
                    std::string_view text, UtcTime written) {
    const auto tidied = checkedNote(connection, requireField(connection, field), category, text);
    if (!tidied)
        return tidied.error();
    auto insert = connection.prepare("INSERT INTO field_note(field, category, author, written, text) "
                                     "VALUES(?1, ?2, ?3, ?4, ?5)");
    if (!insert)
        return insert.error();
    insert->bind(1, field);
    bindCategory(*insert, 2, category);
    insert->bind(3, author).bind(4, storedTime(written));
    insert->bind(5, std::string_view(*tidied));
    return insert->run();
}

Status editTableNote(sql::Connection& connection, int note, int category, std::string_view text) {
    if (auto exists = requireOwnerOf(connection, note); !exists)
        return exists;
    return changeNote(connection, "UPDATE table_note SET category = ?2, text = ?3 WHERE id = ?1", note, category, text);
}

Status editFieldNote(sql::Connection& connection, int note, int category, std::string_view text) {
    return changeNote(connection, "UPDATE field_note SET category = ?2, text = ?3 WHERE id = ?1", note, category, text);
}

Status deleteTableNote(sql::Connection& connection, int note) {
    return deleteById(connection, "DELETE FROM table_note WHERE id = ?1", note, "note");
}

Status deleteFieldNote(sql::Connection& connection, int note) {
    return deleteById(connection, "DELETE FROM field_note WHERE id = ?1", note, "note");
}

Status addNoteCategory(sql::Connection& connection, std::string_view name) {
    const std::string tidied = tidyNoteCategory(name);
    if (auto checked = checkNoteCategory(tidied); !checked)
        return checked;
    if (auto checked = requireFreeName(connection, tidied, -1); !checked)
        return checked;
    auto insert = connection.prepare("INSERT INTO note_category(name) VALUES(?1)");
    if (!insert)
        return insert.error();
    return insert->bind(1, std::string_view(tidied)).run();
}

Status renameNoteCategory(sql::Connection& connection, int category, std::string_view name) {
    const std::string tidied = tidyNoteCategory(name);
    if (auto checked = checkNoteCategory(tidied); !checked)
        return checked;
    if (auto checked = requireFreeName(connection, tidied, category); !checked)
        return checked;
    auto update = connection.prepare("UPDATE note_category SET name = ?2 WHERE id = ?1");
    if (!update)
        return update.error();
    update->bind(1, category).bind(2, std::string_view(tidied));
    return changeRow(connection, *update, category, kCategory);
}

Status deleteNoteCategory(sql::Connection& connection, int category) {
    return deleteById(connection, "DELETE FROM note_category WHERE id = ?1", category, kCategory);
}

} // namespace tavix::repository
