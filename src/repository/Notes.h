#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "sql/Connection.h"

#include <string_view>

/// Notes that users write about tables, collections and fields. `category` -1 stands for none. What does not exist is
/// an error. Texts and names are tidied and checked as base/NoteText.h says.
namespace tavix::repository {

enum class NoteOwner : char { Table = 'T', Collection = 'C' };

[[nodiscard]] Status addTableNote(sql::Connection& connection, NoteOwner kind, int owner, int category,
                                  std::string_view author, std::string_view text, UtcTime written);
[[nodiscard]] Status addFieldNote(sql::Connection& connection, int field, int category, std::string_view author,
                                  std::string_view text, UtcTime written);
/// Author and date stay. The table or collection must still be there.
[[nodiscard]] Status editTableNote(sql::Connection& connection, int note, int category, std::string_view text);
[[nodiscard]] Status editFieldNote(sql::Connection& connection, int note, int category, std::string_view text);
[[nodiscard]] Status deleteTableNote(sql::Connection& connection, int note);
[[nodiscard]] Status deleteFieldNote(sql::Connection& connection, int note);

// Names of categories are not empty and differ from each other, and not by upper and lower case alone.
[[nodiscard]] Status addNoteCategory(sql::Connection& connection, std::string_view name);
[[nodiscard]] Status renameNoteCategory(sql::Connection& connection, int category, std::string_view name);
/// Its notes stay, without a category.
[[nodiscard]] Status deleteNoteCategory(sql::Connection& connection, int category);

} // namespace tavix::repository
