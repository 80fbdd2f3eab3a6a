#pragma once

#include "tabs/ui/CListTab.h"

namespace tavix {

class ChartRows;

/// The visualizations that are stored with a table.
class CTabTblVis final : public CListTab {
    Q_OBJECT
  public:
    CTabTblVis(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

  protected:
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;

  private:
    ChartRows& m_rows;
};

} // namespace tavix
