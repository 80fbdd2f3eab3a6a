#pragma once

#include "alert/AlertCommands.h"
#include "tabs/RuleRows.h"
#include "tabs/ui/CListWithDetails.h"

namespace tavix {

/// The custom metrics of a table, and below them the history of the selected metric.
class CTabCustMet final : public CListWithDetails {
    Q_OBJECT
  public:
    CTabCustMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

    /// Selects the metric's row, if there is one.
    void SelectMetric(int metricId);

  protected:
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void FillDetails(PrViewer& viewer, std::int64_t row) override;

  private:
    /// The current custom metric, and the alerts that watch it.
    [[nodiscard]] AlertTarget CurrentFigure() const;
    CustomMetricRows& m_rows;
    CustomMetricHistoryRows& m_history;
};

} // namespace tavix
