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

/// Writes a new note or changes one. OK stores it and closes; a note that cannot be stored stays in the dialog.
/// Ctrl+Enter is OK; whatever else closes the dialog asks first when something would be lost.
class CNoteDlg final : public QDialog {
    Q_OBJECT
  public:
    /// The document must have a report and outlive the dialog.
    CNoteDlg(CTavixDoc& document, NoteSubject subject, QWidget* parent = nullptr);
    /// Changes `note`; `dateText` is when it was written.
    CNoteDlg(CTavixDoc& document, NoteSubject subject, const Note& note, const QString& dateText,
             QWidget* parent = nullptr);

    /// Categories were added, renamed or deleted meanwhile, whatever became of the note.
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
    std::shared_ptr<PrViewer> m_session; ///< of the report that the note belongs to
    NoteEditor m_editor;
    NoteDraft m_kept; ///< as it is stored
    int m_noteId;     ///< -1 for a new note
    bool m_categoriesChanged = false;
    QComboBox* m_category;
    QPlainTextEdit* m_text;
    QLabel* m_length;
};

} // namespace tavix
