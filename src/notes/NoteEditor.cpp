#include "notes/NoteEditor.h"

#include "access/PrViewer.h"
#include "base/Characters.h"
#include "base/LoginName.h"
#include "base/Messages.h"
#include "base/NoteText.h"

#include <fmt/format.h>

namespace tavix {

namespace {

constexpr std::size_t kQuotedBytes = 200;

/// The beginning of the note, which tells the user which note it is.
std::string quoted(std::string_view text) {
    const std::string_view line = text.substr(0, text.find('\n'));
    const std::string_view beginning = cutToBytes(line, kQuotedBytes);
    return fmt::format("\"{}{}\"", beginning, beginning.size() < text.size() ? "…" : "");
}

} // namespace

NoteEditor::NoteEditor(PrViewer& viewer, Messages& messages, std::string user)
    : m_viewer(viewer), m_messages(messages), m_user(std::move(user)) {}

NoteEditor::NoteEditor(PrViewer& viewer, Messages& messages) : NoteEditor(viewer, messages, loginName()) {}

bool NoteEditor::Check(const NoteDraft& draft) {
    const std::string text = tidyNote(draft.text);
    const Status checked = checkNote(text);
    if (!checked)
        m_messages.warn(text.empty() ? "Enter the text of the note." : checked.error().text,
                        text.empty() ? "Missing Value" : "Invalid Value");
    return checked.ok();
}

bool NoteEditor::Conclude(bool succeeded, std::string_view leadIn) {
    if (!succeeded)
        m_messages.warn(fmt::format("{}:\n\n{}", leadIn, m_viewer.getErrorString().view()));
    return succeeded;
}

bool NoteEditor::Add(const NoteSubject& subject, const NoteDraft& draft) {
    if (!Check(draft))
        return false;
    const bool added =
        subject.kind == NoteSubject::Kind::Field
            ? m_viewer.createNewFieldNote(subject.id, draft.categoryId, m_user, draft.text)
            : m_viewer.createNewTableNote(subject.id, subject.kind == NoteSubject::Kind::Collection ? 'C' : 'T',
                                          draft.categoryId, m_user, draft.text);
    return Conclude(added, "Error occurred while adding the note");
}

bool NoteEditor::Edit(const NoteSubject& subject, int noteId, const NoteDraft& draft) {
    if (!Check(draft))
        return false;
    const bool edited = subject.kind == NoteSubject::Kind::Field
                            ? m_viewer.editFieldNote(noteId, draft.categoryId, draft.text)
                            : m_viewer.editTableNote(noteId, draft.categoryId, draft.text);
    return Conclude(edited, "Error occurred while saving the note");
}

bool NoteEditor::Delete(const NoteSubject& subject, std::span<const Note> notes) {
    if (notes.empty())
        return false;
    const bool isOne = notes.size() == 1;
    const std::string question = isOne ? fmt::format("Delete this note?\n\n{}", quoted(notes.front().text))
                                       : fmt::format("Delete these {} notes?", notes.size());
    if (m_messages.ask(question, isOne ? "Delete Note" : "Delete Notes", Messages::Answer::No) != Messages::Answer::Yes)
        return false;
    bool anyGone = false;
    for (const Note& note : notes) {
        const bool deleted = subject.kind == NoteSubject::Kind::Field ? m_viewer.deleteFieldNote(note.id)
                                                                      : m_viewer.deleteTableNote(note.id);
        if (!Conclude(deleted, "Error occurred while deleting the note"))
            return anyGone;
        anyGone = true;
    }
    return anyGone;
}

bool NoteEditor::MayDiscard(const NoteDraft& draft, const NoteDraft& kept) {
    if (draft.categoryId == kept.categoryId && tidyNote(draft.text) == tidyNote(kept.text))
        return true;
    return m_messages.ask("The note is not saved. Discard what you have written?", "Discard Note",
                          Messages::Answer::No) == Messages::Answer::Yes;
}

NoteActions noteActions(bool hasReport, const NoteSubject& subject, std::size_t selected) {
    const bool possible = hasReport && subject.kind != NoteSubject::Kind::Nothing;
    return {possible, possible && selected == 1, possible && selected > 0};
}

} // namespace tavix
