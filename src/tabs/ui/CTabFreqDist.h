#pragma once

#include "tabs/ui/CListTab.h"

#include <functional>

namespace tavix {

class DistributionRows;

/// Two tabs of a field, by item code: 6 how often each value occurs, any other how often each pattern does.
class CTabFreqDist final : public CListTab {
    Q_OBJECT
  public:
    CTabFreqDist(CViewSite& site, const ReportSubject& subject, bool isTornOff, int itemCode,
                 QWidget* parent = nullptr);

  protected:
    [[nodiscard]] bool RefillsOn(RefreshHint hint) const override;
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;
    void RowsChanged() override;

  private:
    std::function<bool(PrViewer&)> m_fill;
    DistributionRows* m_rows = nullptr; ///< the list's
};

} // namespace tavix
