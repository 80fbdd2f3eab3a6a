#pragma once

#include "doc/ItemCode.h"
#include "tabs/FreqDistModel.h"
#include "tabs/ui/CListTab.h"
#include "tabs/ui/DrillThrough.h"

#include <span>

class QAction;

namespace tavix {

class ExtentLine;
class SearchLine;

/// Two tabs of a field, by item code: how often each value occurs (Frequency), how often each pattern does (any other
/// code). The document keeps a filter for each. FreqDistModel decides; this class shows.
class CTabFreqDist final : public CListTab {
    Q_OBJECT
  public:
    CTabFreqDist(CViewSite& site, const ReportSubject& subject, bool isTornOff, ItemCode itemCode,
                 QWidget* parent = nullptr);

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    QWidget* GetLastTabStop() override;
    /// "(Filtered)" while the field has a filter.
    [[nodiscard]] QString GetCaptionMark() const override;
    bool ExecuteCommand(int commandId) override;
    [[nodiscard]] CommandState UpdateCommand(int commandId) const override;
    [[nodiscard]] static std::span<const CommandRow<CTabFreqDist>> CommandRows();

    /// Puts the keyboard into the search field.
    void OnQuickSearch();
    void OnFilter();
    [[nodiscard]] bool CanFilter() const { return m_model.CanFilter(); }
    void OnStopFiltering();
    [[nodiscard]] bool CanStopFiltering() const { return m_model.CanStopFiltering(); }

  protected:
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    void MakeActions();
    void ShowActions();
    /// Shows the lines above and below the list.
    void ShowLines();
    void OnDrillThrough();
    void FilterToSelected(ValueChoice choice);
    void SetFilter(int fieldId, std::string filter, bool isProvisional = false);
    /// Filters by the text of the search field; `isFinal` remembers the filter.
    void Search(bool isFinal);
    void GoToList();
    void ShowUpTo(qint64 limit);
    void FilterChanged();

    DistributionRows& m_rows; ///< owned by the list
    FreqDistModel m_model;
    DrillThrough m_drill;
    SearchLine* m_line;
    ExtentLine* m_extent;
    QAction* m_drillThrough;
    QAction* m_filter;
    QAction* m_stop;
    QAction* m_keep;
    QAction* m_exclude;
};

} // namespace tavix
