#pragma once

#include "tabs/RuleRows.h"
#include "tabs/ui/CListTab.h"
#include "tabs/ui/DrillThrough.h"

namespace tavix {

class LowerLists;

/// The business rules of a table, and below them the history of the one that is selected and the rows that violate it.
class CTabBusRule final : public CListTab {
    Q_OBJECT
  public:
    CTabBusRule(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);
    ~CTabBusRule() override;

  protected:
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    void ShowDetails(std::int64_t row);
    [[nodiscard]] bool CanDrillThrough() const;
    void OnDrillThrough();

    BusinessRuleRows& m_rows;
    BusinessRuleHistoryRows m_history;
    RuleLogRows m_log;
    LowerLists* m_lower;
    DrillThrough m_drill;
    QAction* m_drillThrough;
};

} // namespace tavix
