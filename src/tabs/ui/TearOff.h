#pragma once

#include "doc/CRefreshItem.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/CTableView.h"

#include <QWidget>

namespace tavix {

/// A window that keeps a second view while the first goes on to something else, until the user closes it. When its
/// report is closed it says so, and shows its object again when the report is.
class CTearOff : public QWidget, public CRefreshItem {
    Q_OBJECT
  public:
    /// Loads what is selected now and shows it beside `view`, the one that it was detached from.
    void Open(const QWidget& view);
    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    void ApplyDisplay() { m_view->ApplyDisplay(); }
    [[nodiscard]] CReportView& GetView() const { return *m_view; }

  protected:
    CTearOff(CViewSite& site, QWidget* parent);
    void SetView(CReportView* view);
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void AddKeys();

    CReportView* m_view = nullptr;
};

/// With the tabs of a table or collection.
class CTableTearOff final : public CTearOff {
    Q_OBJECT
  public:
    /// A window of its own that goes with `parent`.
    CTableTearOff(CViewSite& site, QWidget* parent);
};

/// With the tabs of a field.
class CFieldTearOff final : public CTearOff {
    Q_OBJECT
  public:
    /// A window of its own that goes with `parent`.
    CFieldTearOff(CViewSite& site, QWidget* parent);
};

} // namespace tavix
