#include "notes/Notes.h"

namespace tavix {

NoteSubject tableNoteSubject(const ReportSubject& subject) {
    const ReportSelection& selection = subject.selection;
    if (selection.kind == ReportSelection::Kind::Table)
        return {NoteSubject::Kind::Table, selection.table.id, "Table " + selection.table.displayName()};
    if (selection.kind == ReportSelection::Kind::Collection)
        return {NoteSubject::Kind::Collection, selection.id, "Collection " + selection.name};
    return {};
}

NoteSubject fieldNoteSubject(const ReportSubject& subject) {
    if (subject.selection.fieldId == -1)
        return {};
    std::string title = "Field " + subject.selection.fieldName;
    if (!subject.table.displayName().empty())
        title += " of " + subject.table.displayName();
    return {NoteSubject::Kind::Field, subject.selection.fieldId, std::move(title)};
}

} // namespace tavix
