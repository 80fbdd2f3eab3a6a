#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CViewSite.h"
#include "doc/CommandTarget.h"
#include "nav/SelectionInformation.h"

#include <QWidget>

class QPlainTextEdit;
class QToolButton;

namespace tavix {

/// The table information pane: details of the selected table or field as text that can be copied.
class CTableInfo final : public QWidget, public CRefreshItem, public CommandTarget {
    Q_OBJECT
  public:
    /// The site must outlive the pane.
    explicit CTableInfo(CViewSite& site, QWidget* parent = nullptr);

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    /// Shows the site's current selection.
    void ShowSelection();
    /// Puts the pane after `before` in the tab order.
    void ComeAfter(QWidget* before);

  Q_SIGNALS:
    void CloseRequested();

  private:
    CViewSite& m_site;
    SelectionInformation m_information;
    QPlainTextEdit* m_text;
    QToolButton* m_close;
};

} // namespace tavix
