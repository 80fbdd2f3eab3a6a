#pragma once

#include "tabs/ui/CListTab.h"

#include <functional>

namespace tavix {

/// Three tabs of a field, by item code: 5 every metric with its value, 8 percentiles, 9 outliers. Any other code
/// gives no columns.
class CTabColProf final : public CListTab {
    Q_OBJECT
  public:
    CTabColProf(CViewSite& site, const ReportSubject& subject, bool isTornOff, int itemCode, QWidget* parent = nullptr);

  protected:
    /// Not on a change of the options.
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;

  private:
    std::function<bool(PrViewer&)> m_fill;
};

} // namespace tavix
