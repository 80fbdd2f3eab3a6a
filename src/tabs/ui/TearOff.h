#pragma once

#include "doc/CRefreshItem.h"
#include "tabs/ui/CFieldView.h"
#include "tabs/ui/CTableView.h"

#include <QWidget>

namespace tavix {

/// A window with a second view that keeps its object while the first view shows others. When the report is closed, the
/// window says so; when the report is reopened, it shows the object again.
class CTearOff : public QWidget, public CRefreshItem {
    Q_OBJECT
  public:
    /// Loads the selection and shows the window beside `view`, from which it was detached.
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
    void TellName();

    CReportView* m_view = nullptr;
};

/// With the tabs of a table or collection.
class CTableTearOff final : public CTearOff {
    Q_OBJECT
  public:
    /// The window closes with `parent`.
    CTableTearOff(CViewSite& site, QWidget* parent);
};

/// With the tabs of a field.
class CFieldTearOff final : public CTearOff {
    Q_OBJECT
  public:
    /// The window closes with `parent`.
    CFieldTearOff(CViewSite& site, QWidget* parent);
};

} // namespace tavix
