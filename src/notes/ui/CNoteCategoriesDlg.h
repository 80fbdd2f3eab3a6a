#pragma once

#include "notes/NoteCategories.h"

#include <QDialog>

class QListWidget;
class QPushButton;

namespace tavix {

class CTavixDoc;

/// The list of note categories, to be added to, renamed in and deleted from: Insert, F2 or Enter, and Del on the list.
class CNoteCategoriesDlg final : public QDialog {
    Q_OBJECT
  public:
    /// `categories` was read, and must outlive the dialog.
    explicit CNoteCategoriesDlg(NoteCategories& categories, QWidget* parent = nullptr);

    /// Reads the categories and shows the dialog modally; after a message, or without a report, it does not come up.
    /// True when categories have changed: notes then have to be read anew.
    static bool Run(CTavixDoc& document, QWidget* parent);

  private:
    void Show(int position);
    void Add();
    void Rename();
    void Delete();

    NoteCategories& m_categories;
    QListWidget* m_list;
    QPushButton* m_rename;
    QPushButton* m_delete;
};

} // namespace tavix
