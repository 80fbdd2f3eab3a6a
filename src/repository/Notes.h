#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <string_view>

/// Notes of users about tables, collections and fields. `category` -1: none. An id that does not exist is an error.
/// Texts and names are tidied and checked by base/NoteText.h.
namespace tavix::repository {

enum class NoteOwner : char { Table = 'T', Collection = 'C' };

[[nodiscard]] Status addTableNote(sql::Connection& connection, NoteOwner kind, int owner, int category,
                                  std::string_view author, std::string_view text, UtcTime written);
[[nodiscard]] Status addFieldNote(sql::Connection& connection, int field, int category, std::string_view author,
                                  std::string_view text, UtcTime written);
/// Keeps author and date. The table or collection must still exist.
[[nodiscard]] Status editTableNote(sql::Connection& connection, int note, int category, std::string_view text);
[[nodiscard]] Status editFieldNote(sql::Connection& connection, int note, int category, std::string_view text);
[[nodiscard]] Status deleteTableNote(sql::Connection& connection, int note);
[[nodiscard]] Status deleteFieldNote(sql::Connection& connection, int note);

// Names of categories are not empty and differ in more than upper and lower case.
[[nodiscard]] Status addNoteCategory(sql::Connection& connection, std::string_view name);
[[nodiscard]] Status renameNoteCategory(sql::Connection& connection, int category, std::string_view name);
/// Its notes are kept, without a category.
[[nodiscard]] Status deleteNoteCategory(sql::Connection& connection, int category);

} // namespace tavix::repository
