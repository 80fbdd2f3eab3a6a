#pragma once

#include "report/DistributionKind.h"
#include "tabs/ui/CListTab.h"
#include "tabs/ui/DrillThrough.h"

#include <optional>
#include <span>

class QAction;

namespace tavix {

class DistributionRows;
class FilterLine;
enum class ValueChoice;

/// Two tabs of a field, by item code: 6 how often each value occurs, any other how often each pattern does. The
/// document keeps a filter for each.
class CTabFreqDist final : public CListTab {
    Q_OBJECT
  public:
    CTabFreqDist(CViewSite& site, const ReportSubject& subject, bool isTornOff, int itemCode,
                 QWidget* parent = nullptr);

    /// "" without a filter.
    [[nodiscard]] const std::string& GetFilter() const;
    [[nodiscard]] bool IsFiltered() const { return !GetFilter().empty(); }

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    QWidget* GetLastTabStop() override;
    bool ExecuteCommand(int commandId) override;
    [[nodiscard]] CommandState UpdateCommand(int commandId) const override;
    [[nodiscard]] static std::span<const CommandRow<CTabFreqDist>> CommandRows();

    void OnFilter();
    [[nodiscard]] bool CanFilter() const;
    void OnStopFiltering();
    [[nodiscard]] bool CanStopFiltering() const { return IsLoaded() && IsFiltered(); }

    /// How long a reading may take before a dialog shows how far it is.
    int patienceMilliseconds;

  protected:
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    void MakeActions();
    void ShowActions();
    void ShowFilterLine();
    void ShowStopped();
    void OnDrillThrough();
    [[nodiscard]] bool CanDrillThrough() const;
    /// Whether the rows, or their absence, are those of the field.
    [[nodiscard]] bool IsLoaded() const;
    void FilterToSelected(ValueChoice choice);
    void SetFilter(int fieldId, std::string filter);

    DistributionKind m_kind;
    DistributionRows* m_rows = nullptr; ///< the list's
    std::optional<int> m_loadedField;   ///< whose rows are shown, or would be but for its filter
    std::string m_appliedFilter;        ///< that of the last filling
    std::string m_failure;              ///< why that did not come about
    DrillThrough m_drill;
    FilterLine* m_line;
    QAction* m_drillThrough;
    QAction* m_filter;
    QAction* m_stop;
    QAction* m_keep;
    QAction* m_exclude;
};

} // namespace tavix
