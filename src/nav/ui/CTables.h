#pragma once

#include "doc/CRefreshItem.h"
#include "doc/CViewSite.h"
#include "doc/CommandTarget.h"
#include "nav/SelectionInformation.h"
#include "nav/TreeContents.h"

#include <QWidget>

#include <array>
#include <string>
#include <vector>

class QStackedWidget;

namespace tavix {

class NavigatorTabs;
class NavigatorTree;
class TreeModel;

/// The navigator: the pages "Tables", "Collections" and "Redundant Data Analyses", each a tree. Reports the selection
/// to the site. Selection and expanded branches survive a change of run if the objects still exist.
class CTables final : public QWidget, public CRefreshItem, public CommandTarget {
    Q_OBJECT
  public:
    /// The site must outlive the navigator.
    explicit CTables(CViewSite& site, QWidget* parent = nullptr);
    ~CTables() override;

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;

    /// Shows the tables page and selects the table; false, without a message, when there is no such table. `mode` is
    /// the kind of the data source.
    bool SelectTable(const std::string& dataSource, const std::string& qualifier1, const std::string& qualifier2,
                     const std::string& table, int mode);
    /// Shows the page of the table or collection and selects it; false when there is none of that id.
    bool SelectObject(const ReportSelection& object);
    /// Selects a field of the table or collection that is selected on the visible page, or that owns the selected
    /// field; false when it has no such field.
    bool SelectField(int fieldId);
    /// The details of the table or field as text; "" for any other selection or when they cannot be read.
    [[nodiscard]] std::string GetInformationText(const ReportSelection& selection);
    /// Selects the first table when nothing with metrics is selected.
    void SelectSomething();
    /// Reloads the collections of every table and broadcasts hint 1; false, after a message, on failure.
    bool RefreshCollections();
    /// Adds the field that is selected on the visible page. Returns 1, or 0 when no field is selected or, after a
    /// message, on failure.
    int AddSelectedFieldToCollection(int collectionId);
    [[nodiscard]] NavigatorPage GetPage() const;
    /// Whether the visible page lists nothing.
    [[nodiscard]] bool IsPageEmpty() const;
    /// The data source of the selected node on the tables page: the node itself or the one that it belongs to; -1
    /// without one.
    [[nodiscard]] int GetDataSource() const;
    void ShowPage(NavigatorPage page);
    void SetInternalFocus();
    /// The tree of the visible page.
    [[nodiscard]] QWidget* GetPageControl() const;

  private:
    struct Page {
        TreeModel* model = nullptr;
        NavigatorTree* view = nullptr;
    };
    struct PageState {
        TreePath selected;
        std::vector<TreePath> expanded;
    };

    Page MakePage(NavigatorPage page);
    [[nodiscard]] Page& page(NavigatorPage page) { return m_pages[static_cast<std::size_t>(page)]; }
    [[nodiscard]] PageState StateOf(Page& page) const;
    void Reload(Page& page);
    void ShowAlerts();
    void OpenTopLevel(Page& page);
    void TellSelection();
    bool SelectNode(Page& page, const TreeNode* node);

    CViewSite& m_site;
    NavigatorTabs* m_tabs = nullptr;
    QStackedWidget* m_stack;
    std::array<Page, 3> m_pages;
    SelectionInformation m_information;
    bool m_reloading = false;
};

} // namespace tavix
