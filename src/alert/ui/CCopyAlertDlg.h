#pragma once

#include "alert/FieldChoice.h"

#include <QDialog>

#include <functional>

class QLabel;
class QPushButton;
class QTableWidget;
class QTableWidgetItem;

namespace tavix {

/// Asks to which fields of the table an alert is copied. Stays open while `store` refuses the copies.
class CCopyAlertDlg final : public QDialog {
    Q_OBJECT
  public:
    /// `condition` is that of the alert. `store` tells the user itself why it returns false.
    CCopyAlertDlg(const QString& condition, FieldChoice choice,
                  std::function<bool(const std::vector<AlertDefinition>&)> store, QWidget* parent);

    void accept() override;

  private:
    void FillTable();
    void Chosen(const QTableWidgetItem& item);
    void ChooseAll(bool isChosen);
    void ShowChoice();

    FieldChoice m_choice;
    std::function<bool(const std::vector<AlertDefinition>&)> m_store;
    QTableWidget* m_table;
    QLabel* m_summary;
    QPushButton* m_copy = nullptr;
    bool m_isFilling = false;
};

} // namespace tavix
