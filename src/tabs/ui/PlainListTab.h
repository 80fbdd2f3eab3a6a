#pragma once

#include "tabs/ui/CListTab.h"

namespace tavix {

class TableAlertRows;

/// The alerts of a table.
class CTabAlerts final : public CListTab {
    Q_OBJECT
  public:
    CTabAlerts(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

  protected:
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;

  private:
    TableAlertRows& m_rows;
};

} // namespace tavix
