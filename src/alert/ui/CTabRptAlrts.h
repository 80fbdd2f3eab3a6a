#pragma once

#include "alert/ReportAlertRows.h"
#include "alert/ui/AlertActions.h"
#include "doc/NavigateRequest.h"
#include "drill/ui/DrillDialogs.h"

#include <QDialog>

#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;
class QStackedWidget;
class QVBoxLayout;

namespace tavix {

class CUGCtrl;
class CViewSite;
class ElidedLabel;

/// The questions of the alerts window to its user.
struct AlertsDialogs {
    AlertsDialogs();

    /// Asks where to save.
    std::function<QString(QWidget& window, const QString& folder, const QString& name)> chooseFile;
    std::function<bool(QWidget& window, QPrinter& printer)> choosePrinter = chooseDrillPrinter;
};

/// All alerts of the repository, raised ones first, with a filter and a search; saves and prints the list, and leads to
/// the figure that an alert watches. Ctrl+F searches, Ctrl+Shift+F filters, Ctrl+S saves, Ctrl+P prints, and Enter in
/// the list goes to the figure.
class CTabRptAlrts final : public QDialog {
    Q_OBJECT
  public:
    /// `site` must outlive the dialog.
    CTabRptAlrts(CViewSite& site, const CAlertsFilter& filter, QWidget* parent, AlertsDialogs dialogs = {});
    ~CTabRptAlrts() override;

    /// Shows the dialog modally; without a report it is not shown. `filter` is the one to begin with, and receives the
    /// user's. The place to show, if the user has chosen one.
    [[nodiscard]] static std::optional<NavigateRequest> Run(CViewSite& site, CAlertsFilter& filter, QWidget* parent);

    [[nodiscard]] const CAlertsFilter& GetFilter() const { return m_rows.GetFilter(); }
    [[nodiscard]] const std::optional<NavigateRequest>& GetPlace() const { return m_place; }

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void showEvent(QShowEvent* event) override;

  private:
    void MakeTop(QVBoxLayout& layout);
    void MakeButtons(QVBoxLayout& layout);
    void MakeKeys();
    /// False when not all could be read.
    bool Read();
    /// Reads the alerts anew, and selects again what was selected.
    void Fill();
    void WarnOfFailure();
    void ShowRows();
    void EnableButtons();
    void Search();
    void Filter();
    void Save();
    void Print();
    void GoTo();
    [[nodiscard]] AlertTarget Target() const;

    CViewSite& m_site;
    AlertsDialogs m_dialogs;
    ReportAlertRows m_rows;
    ElidedLabel* m_filterLine;
    QLineEdit* m_find;
    QStackedWidget* m_stack;
    CUGCtrl* m_grid;
    QLabel* m_note; ///< in place of the list, why it is empty
    QLabel* m_count;
    QPushButton* m_save = nullptr;
    QPushButton* m_goTo = nullptr;
    QPushButton* m_print = nullptr;
    QPushButton* m_filter = nullptr;
    AlertActions* m_actions;
    std::optional<NavigateRequest> m_place;
    bool m_isRead = true; ///< or else the user has still to be told
};

} // namespace tavix
