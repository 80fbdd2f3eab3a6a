#pragma once

#include "base/Messages.h"
#include "frame/DeleteHistoryModel.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QPushButton;

namespace tavix {

class CRunTable;

/// Lets the user choose the runs to delete: one run and all older ones. Asks for confirmation before it closes with OK.
class CDeleteHistoryDlg final : public QDialog {
    Q_OBJECT

  public:
    /// `messages` must outlive the dialog.
    CDeleteHistoryDlg(DeleteHistoryModel model, Messages& messages, QWidget* parent = nullptr);

    /// Only valid after OK.
    [[nodiscard]] HistoryDeletion Deletion() const { return m_model.Deletion(); }

    /// For CTavixDoc::DeleteHistory. False when the dialog was cancelled or the runs cannot be read.
    [[nodiscard]] static bool Ask(const CTavixDoc& doc, QWidget* parent, HistoryDeletion& deletion);

    void accept() override;

  private:
    void SelectionChanged();
    void OfferRunsAfterwards();

    DeleteHistoryModel m_model;
    Messages& m_messages;
    CRunTable* m_table;
    QComboBox* m_afterwards;
    QLabel* m_afterwardsLabel;
    QLabel* m_summary;
    QPushButton* m_delete;
};

} // namespace tavix
