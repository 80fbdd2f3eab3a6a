#pragma once

#include "notes/NoteEditor.h"
#include "notes/NoteRows.h"
#include "tabs/ui/CProfTab.h"

class QAction;
class QLabel;
class QPushButton;
class QSplitter;
class QStackedWidget;

namespace tavix {

class CUGCtrl;
class NoNotesPage;
class NoteReadingPane;

/// What distinguishes the two notes tabs.
struct NotesTabKind {
    const char* name; ///< of the tab, also in the settings
    NoteSubject (*subjectOf)(const ReportSubject&);
};

/// The notes of the selected table or collection, and of the selected field.
inline constexpr NotesTabKind kTableNotes = {"tableNotes", &tableNoteSubject};
inline constexpr NotesTabKind kFieldNotes = {"fieldNotes", &fieldNoteSubject};

/// A tab of notes: their list, and below it the whole text of the selected note; without notes, a sentence and a
/// button. Insert adds a note, Enter or F2 edits it, Del deletes it.
class CNotesTab : public CProfTab {
    Q_OBJECT
  public:
    CNotesTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, const NotesTabKind& kind, QWidget* parent);
    ~CNotesTab() override;

    /// Asks for a new note and stores it, even if another tab is visible.
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
    void FitLastColumn();
    void ShowRows(int note, std::int64_t row);
    void ShowNote(std::int64_t row);
    void ShowActions();
    void ApplyColors();
    void EditNote(std::int64_t row);
    void DeleteNotes();
    void EditCategories();
    void NotesChanged();

    decltype(NotesTabKind::subjectOf) m_subjectOf;
    NoteRows m_rows;
    NoteSubject m_filled; ///< the subject of the rows
    bool m_isUnreadable = false;
    bool m_showsLatest = false; ///< the next filling selects the new note
    QAction* m_add;
    QAction* m_edit;
    QAction* m_delete;
    QAction* m_categories;
    QLabel* m_count;
    QStackedWidget* m_stack = nullptr;
    QSplitter* m_splitter = nullptr;
    CUGCtrl* m_grid = nullptr;
    NoteReadingPane* m_reading = nullptr;
    NoNotesPage* m_emptyPage = nullptr;
    QPushButton* m_categoriesButton = nullptr;
};

template <const NotesTabKind& kNotes>
class NotesTab final : public CNotesTab {
  public:
    NotesTab(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr)
        : CNotesTab(site, subject, isTornOff, kNotes, parent) {}
};

using CTabTblNotes = NotesTab<kTableNotes>;
using CTabNotes = NotesTab<kFieldNotes>;

} // namespace tavix
