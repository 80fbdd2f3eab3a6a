#pragma once

#include "alert/TableAlertRows.h"
#include "alert/ui/AlertActions.h"
#include "tabs/ui/CListTab.h"

namespace tavix {

/// The alerts of a table, raised ones first, to be made, changed and muted here. Enter or a double click leads to the
/// figure that an alert watches.
class CTabAlerts final : public CListTab {
    Q_OBJECT
  public:
    CTabAlerts(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

    QWidget* GetLastTabStop() override;

  protected:
    /// Also when alerts or the runs that they look back on have changed.
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    void PrepareFill() override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    [[nodiscard]] AlertTarget Target() const;
    void GoTo();

    TableAlertRows& m_rows;
    AlertActions* m_actions;
    QAction* m_goTo;
    QWidget* m_footer;
    QWidget* m_add;
    int m_current = -1; ///< the alert that was selected when the rows were read anew
};

} // namespace tavix
