#pragma once

#include "base/LibraryDate.h"
#include "report/ReportSubject.h"

#include <string>

namespace tavix {

/// The object that a note belongs to.
struct NoteSubject {
    enum class Kind { Nothing, Table, Collection, Field };

    Kind kind = Kind::Nothing;
    int id = -1;
    std::string title; ///< shown to the user: "Table customers", "Field city of customers"

    bool operator==(const NoteSubject&) const = default;
};

/// The table or collection, even if a field of it is selected.
[[nodiscard]] NoteSubject tableNoteSubject(const ReportSubject& subject);
/// The field; Nothing without one.
[[nodiscard]] NoteSubject fieldNoteSubject(const ReportSubject& subject);

/// A note as it is stored.
struct Note {
    int id = -1;
    LibraryDate written = 0;
    std::string category; ///< "" without one
    int categoryId = -1;
    std::string user;
    std::string text; ///< lines end with "\n"

    bool operator==(const Note&) const = default;
};

/// The parts of a note that the user edits.
struct NoteDraft {
    int categoryId = -1; ///< -1 for none
    std::string text;

    bool operator==(const NoteDraft&) const = default;
};

} // namespace tavix
