#pragma once

#include "tabs/RuleRows.h"
#include "tabs/ui/CListTab.h"

namespace tavix {

class LowerLists;

/// The custom metrics of a table, and below them the history of the one that is selected.
class CTabCustMet final : public CListTab {
    Q_OBJECT
  public:
    CTabCustMet(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);
    ~CTabCustMet() override;

  protected:
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    void ShowHistory(std::int64_t row);

    CustomMetricRows& m_rows;
    CustomMetricHistoryRows m_history;
    LowerLists* m_lower;
};

} // namespace tavix
