#pragma once

#include "alert/AlertCommands.h"
#include "tabs/RuleRows.h"
#include "tabs/ui/CListWithDetails.h"
#include "tabs/ui/DrillThrough.h"

namespace tavix {

/// The business rules of a table, and below them the history of the selected rule and the rows that violate it.
class CTabBusRule final : public CListWithDetails {
    Q_OBJECT
  public:
    CTabBusRule(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

    /// Selects the rule's row, if there is one.
    void SelectRule(int ruleId);
    QWidget* GetLastTabStop() override;

  protected:
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void FillDetails(PrViewer& viewer, std::int64_t row) override;
    void NoDetails() override;
    void PrepareFill() override;

  private:
    /// The current rule, and the alerts that watch it.
    [[nodiscard]] AlertTarget CurrentFigure() const;
    [[nodiscard]] bool CanDrillThrough() const;
    void OnDrillThrough();
    /// Rules that the runs suggest for the table.
    void Suggest();

    BusinessRuleRows& m_rows;
    BusinessRuleHistoryRows& m_history;
    RuleLogRows& m_log;
    DrillThrough m_drill;
    QAction* m_drillThrough;
    QWidget* m_footer;
    QWidget* m_suggest;
};

} // namespace tavix
