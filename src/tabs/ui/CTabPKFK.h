#pragma once

#include "tabs/ui/CListTab.h"

namespace tavix {

class PkFkRows;

/// The stored key analyses of a field.
class CTabPKFK final : public CListTab {
    Q_OBJECT
  public:
    CTabPKFK(CViewSite& site, const ReportSubject& subject, bool isTornOff, QWidget* parent = nullptr);

  protected:
    [[nodiscard]] std::string GetObstacle() const override;
    bool FillRows(PrViewer& viewer) override;

  private:
    PkFkRows& m_rows;
};

} // namespace tavix
