#pragma once

#include "alert/AlertHistory.h"

#include <QDialog>

#include <memory>

class QPlainTextEdit;
class QPushButton;
class QTableWidget;

namespace tavix {

class Messages;
class PrViewer;

/// The notes on an alert and what happened to it, the latest first; the user adds and deletes notes.
class CAlertHistoryDlg final : public QDialog {
    Q_OBJECT
  public:
    CAlertHistoryDlg(std::shared_ptr<PrViewer> session, Messages& messages, const AlertState& alert,
                     AlertHistory history, QWidget* parent);

    /// Whether notes were added or deleted.
    [[nodiscard]] bool HasChanged() const { return m_hasChanged; }

    void reject() override;

  private:
    void LayOut();
    void ShowEntries();
    void ShowButtons();
    void AddNote();
    void DeleteNote();
    void ReadAgain();
    void Copy() const;

    std::shared_ptr<PrViewer> m_session; ///< of the alert's report
    Messages& m_messages;
    AlertState m_alert;
    AlertHistory m_history;
    bool m_hasChanged = false;
    QTableWidget* m_table;
    QPlainTextEdit* m_note;
    QPushButton* m_add = nullptr;
    QPushButton* m_delete = nullptr;
};

} // namespace tavix
