#pragma once

#include "notes/NoteEditor.h"
#include "notes/NoteRows.h"
#include "tabs/ui/CProfTab.h"

class QAction;
class QLabel;
class QPlainTextEdit;
class QPushButton;
class QSplitter;
class QStackedWidget;

namespace tavix {

class CUGCtrl;

/// What the two notes tabs have in common: the list of notes, and below it the whole text of the selected one. Without
/// notes there is a sentence and a button. Insert adds, Enter or F2 edits, Del deletes.
class CNotesTab : public CProfTab {
    Q_OBJECT
  public:
    using SubjectOf = NoteSubject (*)(const ReportSubject&);

    CNotesTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, SubjectOf subjectOf, QWidget* parent);
    ~CNotesTab() override;

    /// Asks for a new note and stores it, whether or not the tab is the one that is seen.
    void AddNote();
    [[nodiscard]] bool CanAddNote() const;

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    QWidget* GetLastTabStop() override;
    QWidget* GetMainControl() override;

  protected:
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    void Fill(bool isSameObject) override;
    void changeEvent(QEvent* event) override;

  private:
    void MakeActions();
    [[nodiscard]] QWidget* MakeToolRow();
    [[nodiscard]] QWidget* MakeReadingPane();
    [[nodiscard]] QWidget* MakeEmptyPage();
    void FitLastColumn();
    void ShowRows(int note, std::int64_t row);
    void ShowNote(std::int64_t row);
    void ShowActions();
    void ApplyColors();
    void EditNote(std::int64_t row);
    void DeleteNotes();
    void EditCategories();
    void NotesChanged();

    SubjectOf m_subjectOf;
    NoteRows m_rows;
    NoteSubject m_filled; ///< what the rows are about
    bool m_isUnreadable = false;
    bool m_showsLatest = false; ///< the next rows come with the new note selected
    QAction* m_add;
    QAction* m_edit;
    QAction* m_delete;
    QAction* m_categories;
    QLabel* m_count;
    QStackedWidget* m_stack = nullptr;
    QSplitter* m_splitter = nullptr;
    CUGCtrl* m_grid = nullptr;
    QLabel* m_heading = nullptr;
    QPlainTextEdit* m_text = nullptr;
    QWidget* m_emptyPage = nullptr;
    QLabel* m_empty = nullptr;
    QPushButton* m_addFirst = nullptr;
};

} // namespace tavix
