#pragma once

#include "tabs/SuggestionsModel.h"

#include <QDialog>

#include <memory>
#include <string>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace tavix {

class CViewSite;
class Messages;
class PrViewer;

/// The rules that the figures of a run suggest: the user chooses some, sees the job file with them, and copies or saves
/// it. The repository is not changed.
class CSuggestDlg final : public QDialog {
    Q_OBJECT
  public:
    /// `name` is that of the table or report, for the heading and the file.
    CSuggestDlg(std::shared_ptr<PrViewer> session, Messages& messages, SuggestionsModel model, const QString& name,
                QWidget* parent);

    /// Looks for suggestions for a table, or with -1 for the run, and shows them; a message says why there are none.
    static void Show(CViewSite& site, int tableId, const QString& name, QWidget& over);

  private:
    void FillTable();
    void Chosen(QTableWidgetItem* item);
    void ChooseAll(bool isChosen);
    void ShowFile();
    void Copy();
    void Save();

    std::shared_ptr<PrViewer> m_session;
    Messages& m_messages;
    SuggestionsModel m_model;
    QString m_name;
    QTableWidget* m_table;
    QLabel* m_summary;
    QLabel* m_remark;
    QPlainTextEdit* m_file;
    QPushButton* m_copy;
    QPushButton* m_save;
    std::string m_text; ///< of the file
    bool m_isFilling = false;
};

} // namespace tavix
