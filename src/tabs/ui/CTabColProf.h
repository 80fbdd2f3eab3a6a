#pragma once

#include "tabs/ui/CListTab.h"
#include "tabs/ui/DrillThrough.h"

#include <functional>
#include <optional>

namespace tavix {

class OutlierRows;

/// Three tabs of a field, by item code: 5 every metric with its value, 8 percentiles, 9 outliers. Any other code
/// gives no columns.
class CTabColProf final : public CListTab {
    Q_OBJECT
  public:
    CTabColProf(CViewSite& site, const ReportSubject& subject, bool isTornOff, int itemCode, QWidget* parent = nullptr);
    ~CTabColProf() override;

  protected:
    /// Not on a change of the options.
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;

  private:
    void MakeOutliers();
    [[nodiscard]] std::optional<KvbString> OutlierToDrill() const;
    void OnDrillThrough();

    std::function<bool(PrViewer&)> m_fill;
    DrillThrough m_drill;
    OutlierRows* m_outliers = nullptr; ///< the list's, in the tab of outliers
};

} // namespace tavix
