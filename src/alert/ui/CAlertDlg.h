#pragma once

#include "alert/AlertDraft.h"

#include <QDialog>

#include <memory>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QSpinBox;

namespace tavix {

class DrawingWidget;
class Messages;
class PrViewer;

/// Makes or edits an alert and shows meanwhile in which stored runs it would have been raised. OK (Ctrl+Enter) stores
/// it and closes the dialog; if storing fails, the dialog stays open. Closing it in any other way asks before it
/// discards changes.
class CAlertDlg final : public QDialog {
    Q_OBJECT
  public:
    /// The alert that is stored; `id` -1 makes one. `remark` explains; may be empty.
    struct Purpose {
        int id = -1;
        QString title;
        QString remark;
    };

    CAlertDlg(std::shared_ptr<PrViewer> session, Messages& messages, AlertDraft draft, const Purpose& purpose,
              QWidget* parent);

    void accept() override;
    void reject() override;

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void MakeControls();
    void LayOut(const QString& remark);
    void Connect();
    /// Shows the figures of the chosen input.
    void ShowFigures();
    void ShowRule();
    void ShowLimits();
    void ShowJudged();
    void ShowProposals();
    void ApplyProposal(int row);
    void ApplyColors();

    std::shared_ptr<PrViewer> m_session; ///< of the alert's report
    Messages& m_messages;
    AlertDraft m_draft;
    int m_id;

    QLabel* m_sentence;
    QLabel* m_remark;
    QComboBox* m_input;
    QComboBox* m_figure;
    QComboBox* m_comparison;
    QLineEdit* m_value1;
    QLabel* m_to;
    QLineEdit* m_value2;
    QLabel* m_unit;
    QLabel* m_againstLabel;
    QComboBox* m_against;
    QSpinBox* m_runs;
    QLabel* m_runsLabel;
    QComboBox* m_level;
    QLineEdit* m_description;
    DrawingWidget* m_picture;
    QLabel* m_test;
    QLabel* m_proposalsLabel;
    QListWidget* m_proposals;
    QPushButton* m_store = nullptr;
};

} // namespace tavix
