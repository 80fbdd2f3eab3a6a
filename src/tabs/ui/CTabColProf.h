#pragma once

#include "doc/ItemCode.h"
#include "tabs/ui/CListTab.h"
#include "tabs/ui/DrillThrough.h"

#include <functional>
#include <optional>

namespace tavix {

class FindingsStrip;
class OutlierRows;
class TypesPane;

/// Three tabs of a field, by item code: ColumnProfiling (all metrics with their values), Percentiles and Outliers. Any
/// other code gives no columns.
class CTabColProf final : public CListTab {
    Q_OBJECT
  public:
    CTabColProf(CViewSite& site, const ReportSubject& subject, bool isTornOff, ItemCode itemCode,
                QWidget* parent = nullptr);
    ~CTabColProf() override;

    QWidget* GetLastTabStop() override;

  protected:
    /// Unlike other lists, not when the options change.
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    void MakeOutliers();
    /// Reads the findings and types again.
    void RefillBeside();
    [[nodiscard]] std::optional<KvbString> OutlierToDrill() const;
    void OnDrillThrough();

    std::function<bool(PrViewer&)> m_fill;
    DrillThrough m_drill;
    OutlierRows* m_outliers = nullptr;   ///< the list's rows, in the tab of outliers
    TypesPane* m_types = nullptr;        ///< in the tab of column profiling
    FindingsStrip* m_findings = nullptr; ///< likewise
};

} // namespace tavix
