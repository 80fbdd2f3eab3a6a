#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CViewSite.h"
#include "tabs/StdMetRows.h"

#include <QWidget>

#include <map>

class QLabel;
class QMenu;
class QStackedWidget;

namespace tavix {

class CUGCtrl;

/// The standard metrics of the selected table or collection: a line that names it, and a grid with one row a field.
class CTabStdMet final : public QWidget, public CRefreshItem {
    Q_OBJECT
  public:
    /// The site must outlive the tab.
    explicit CTabStdMet(CViewSite& site, QWidget* parent = nullptr);
    ~CTabStdMet() override;

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;
    /// Shows what the site has selected now. Rows are read anew only when it is another table or collection.
    void ShowSelection();

  private:
    void Fill();
    void ShowHeader();
    void SelectField();
    void KeepWidths();
    [[nodiscard]] std::vector<int> SelectedFields() const;
    void FillCollectionMenu();

    CViewSite& m_site;
    StdMetRows m_rows;
    ReportSelection m_shown;
    QLabel* m_title;
    QLabel* m_detail;
    QStackedWidget* m_stack;
    CUGCtrl* m_grid;
    QLabel* m_note;
    QMenu* m_collectionMenu;
    std::map<std::string, int> m_widths; ///< what the user dragged, by heading
};

} // namespace tavix
