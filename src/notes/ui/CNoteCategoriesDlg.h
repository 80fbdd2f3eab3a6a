#pragma once

#include "notes/NoteCategories.h"

#include <QDialog>

class QListWidget;
class QPushButton;

namespace tavix {

class CTavixDoc;

/// Adds, renames and deletes note categories: Insert, F2 or Enter, and Del on the list.
class CNoteCategoriesDlg final : public QDialog {
    Q_OBJECT
  public:
    /// `categories` has been read and must outlive the dialog.
    explicit CNoteCategoriesDlg(NoteCategories& categories, QWidget* parent = nullptr);

    /// Reads the categories and shows the dialog modally; without a report, or when reading fails after a message, it
    /// is not shown. True when categories have changed; notes must then be read again.
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
