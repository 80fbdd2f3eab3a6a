#pragma once

#include "notes/Notes.h"

#include <span>
#include <string>

namespace tavix {

class Messages;
class PrViewer;

/// Writes, changes and deletes notes the way the user asked for. Whatever cannot be done is said in one message, and
/// nothing has changed then.
class NoteEditor {
  public:
    /// Both must outlive the editor. New notes are those of `user`.
    NoteEditor(PrViewer& viewer, Messages& messages, std::string user);
    /// New notes are those of the user who is logged in.
    NoteEditor(PrViewer& viewer, Messages& messages);

    bool Add(const NoteSubject& subject, const NoteDraft& draft);
    /// The note keeps its user and its date.
    bool Edit(const NoteSubject& subject, int noteId, const NoteDraft& draft);
    /// Asks before it deletes; whether any note is gone. When the repository fails in the middle, those before are.
    bool Delete(const NoteSubject& subject, std::span<const Note> notes);
    /// Whether a draft that differs from `kept` may be given up; asks only when it differs.
    [[nodiscard]] bool MayDiscard(const NoteDraft& draft, const NoteDraft& kept);

  private:
    bool Check(const NoteDraft& draft);
    bool Conclude(bool succeeded, std::string_view leadIn);

    PrViewer& m_viewer;
    Messages& m_messages;
    std::string m_user;
};

/// What can be done while so many notes are selected.
struct NoteActions {
    bool add = false;
    bool edit = false;
    bool remove = false;

    bool operator==(const NoteActions&) const = default;
};

[[nodiscard]] NoteActions noteActions(bool hasReport, const NoteSubject& subject, std::size_t selected);

} // namespace tavix
