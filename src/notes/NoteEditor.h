#pragma once

#include "notes/Notes.h"

#include <span>
#include <string>

namespace tavix {

class Messages;
class PrViewer;

/// Adds, edits and deletes notes for the user. An operation that fails shows one message and changes nothing.
class NoteEditor {
  public:
    /// Both must outlive the editor. New notes are written by `user`.
    NoteEditor(PrViewer& viewer, Messages& messages, std::string user);
    /// New notes are written by the user who is logged in to the system.
    NoteEditor(PrViewer& viewer, Messages& messages);

    bool Add(const NoteSubject& subject, const NoteDraft& draft);
    /// The note keeps its user and its date.
    bool Edit(const NoteSubject& subject, int noteId, const NoteDraft& draft);
    /// Asks first. True if any note was deleted; when the repository fails halfway, the notes before are deleted.
    bool Delete(const NoteSubject& subject, std::span<const Note> notes);
    /// Whether the draft may be discarded; asks the user only if it differs from `kept`.
    [[nodiscard]] bool MayDiscard(const NoteDraft& draft, const NoteDraft& kept);

  private:
    bool Check(const NoteDraft& draft);
    bool Conclude(bool succeeded, std::string_view leadIn);

    PrViewer& m_viewer;
    Messages& m_messages;
    std::string m_user;
};

/// The commands that are enabled for a number of selected notes.
struct NoteActions {
    bool add = false;
    bool edit = false;
    bool remove = false;

    bool operator==(const NoteActions&) const = default;
};

[[nodiscard]] NoteActions noteActions(bool hasReport, const NoteSubject& subject, std::size_t selected);

} // namespace tavix
