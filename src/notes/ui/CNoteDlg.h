#pragma once

#include "notes/NoteCategories.h"
#include "notes/NoteEditor.h"

#include <QDialog>

#include <functional>
#include <memory>

class QComboBox;
class QLabel;
class QPlainTextEdit;

namespace tavix {

class CTavixDoc;

/// Writes a new note or edits one. OK (Ctrl+Enter) stores the note and closes the dialog; if storing fails, the dialog
/// stays open. Closing it in any other way asks before it discards changes.
class CNoteDlg final : public QDialog {
    Q_OBJECT
  public:
    /// The document must have a report and outlive the dialog.
    CNoteDlg(CTavixDoc& document, NoteSubject subject, QWidget* parent = nullptr);
    /// Edits `note`, which was written at `dateText`.
    CNoteDlg(CTavixDoc& document, NoteSubject subject, const Note& note, const QString& dateText,
             QWidget* parent = nullptr);

    /// Whether categories were added, renamed or deleted, even if the note was not stored.
    [[nodiscard]] bool HaveCategoriesChanged() const { return m_categoriesChanged; }

    void accept() override;
    void reject() override;

  private:
    CNoteDlg(CTavixDoc& document, NoteSubject subject, NoteDraft kept, int noteId, const QString& detail,
             QWidget* parent);
    void FillCategories(int chosen);
    void EditCategories();
    void ShowLength();
    [[nodiscard]] NoteDraft Draft() const;

    CTavixDoc& m_document;
    NoteSubject m_subject;
    std::shared_ptr<PrViewer> m_session; ///< of the note's report
    NoteEditor m_editor;
    NoteDraft m_kept; ///< as it is stored
    int m_noteId;     ///< -1 for a new note
    bool m_categoriesChanged = false;
    QComboBox* m_category;
    QPlainTextEdit* m_text;
    QLabel* m_length;
};

} // namespace tavix
