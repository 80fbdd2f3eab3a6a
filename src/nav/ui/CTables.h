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

/// The navigator: the pages "Tables", "Collections" and "Redundant Data Analyses", each a tree. What is selected is
/// told to the site. Selection and opened branches survive a change of run where the objects still exist.
class CTables final : public QWidget, public CRefreshItem, public CommandTarget {
    Q_OBJECT
  public:
    /// The site must outlive the navigator.
    explicit CTables(CViewSite& site, QWidget* parent = nullptr);
    ~CTables() override;

    void Refresh(CRefreshItem* sender, RefreshHint hint, int parameter) override;

    /// Shows the tables page and selects the table; false when there is none of that name, which says nothing to the
    /// user. `mode` is the kind of the data source.
    bool SelectTable(const std::string& dataSource, const std::string& qualifier1, const std::string& qualifier2,
                     const std::string& table, int mode);
    /// Shows the page of the table or collection and selects it; false when there is none of that id.
    bool SelectObject(const ReportSelection& object);
    /// Selects the field of that id below the table or collection that is selected on the page that is showing, or to
    /// which the selected field belongs; false when there is none.
    bool SelectField(int fieldId);
    /// What is known about the table or field; "" when it is neither or cannot be read.
    [[nodiscard]] std::string GetInformationText(const ReportSelection& selection);
    /// Selects the first table when nothing that has figures is selected.
    void SelectSomething();
    /// Looks up the collections of every table anew and broadcasts hint 1; false, after a message, when that fails.
    bool RefreshCollections();
    /// Adds the field that is selected on the page that is showing; 1 when it was added, 0 without a field or, after a
    /// message, when it could not be added.
    int AddSelectedFieldToCollection(int collectionId);
    [[nodiscard]] NavigatorPage GetPage() const;
    /// Whether the page that is showing lists anything.
    [[nodiscard]] bool IsPageEmpty() const;
    void ShowPage(NavigatorPage page);
    void SetInternalFocus();
    /// The tree of the page that is showing.
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
