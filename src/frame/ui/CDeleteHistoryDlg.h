#pragma once

#include "base/Messages.h"
#include "frame/DeleteHistoryModel.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QPushButton;

namespace tavix {

class CRunTable;

/// Chooses the runs to delete: one run and all that are older. Asks once more before it closes with OK.
class CDeleteHistoryDlg final : public QDialog {
    Q_OBJECT

  public:
    /// `messages` must outlive the dialog.
    CDeleteHistoryDlg(DeleteHistoryModel model, Messages& messages, QWidget* parent = nullptr);

    /// Only to be asked after OK.
    [[nodiscard]] HistoryDeletion Deletion() const { return m_model.Deletion(); }

    /// For CTavixDoc::DeleteHistory: false when it was not closed with OK or the runs cannot be read.
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
