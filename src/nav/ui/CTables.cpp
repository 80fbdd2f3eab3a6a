#include "nav/ui/CTables.h"

#include "access/PrViewer.h"
#include "base/ui/ChoiceMenu.h"
#include "base/ui/QtText.h"
#include "doc/CTavixDoc.h"
#include "doc/CollectionMembers.h"
#include "nav/CollectionRefresh.h"
#include "nav/ui/NavigatorTabs.h"
#include "nav/ui/NavigatorTree.h"
#include "nav/ui/TreeModel.h"

#include <QStackedWidget>
#include <QVBoxLayout>

namespace tavix {

namespace {

constexpr std::array<const char*, 3> kPageTitles = {"Tables", "Collections", "Redundant Data Analyses"};

void collectExpanded(const NavigatorTree& view, TreeModel& model, const QModelIndex& parent,
                     std::vector<TreePath>& expanded) {
    for (int row = 0; row < model.rowCount(parent); ++row) {
        const QModelIndex index = model.index(row, 0, parent);
        if (!view.isExpanded(index))
            continue;
        expanded.push_back(TreeContents::pathOf(*model.node(index)));
        collectExpanded(view, model, index, expanded);
    }
}

} // namespace

CTables::CTables(CViewSite& site, QWidget* parent) : QWidget(parent), m_site(site), m_stack(new QStackedWidget(this)) {
    setObjectName(QStringLiteral("navigator"));
    for (std::size_t i = 0; i < m_pages.size(); ++i) {
        m_pages[i] = MakePage(static_cast<NavigatorPage>(i));
        m_pages[i].view->setAccessibleName(toQString(kPageTitles[i]));
        m_stack->addWidget(m_pages[i].view);
    }
    // Created after the trees, so that Tab enters the navigator at a tree and then reaches the page titles.
    m_tabs = new NavigatorTabs(this);
    m_tabs->setAccessibleName(QStringLiteral("Navigator pages"));
    for (const char* title : kPageTitles)
        m_tabs->setTabToolTip(m_tabs->addTab(toQString(title)), toQString(title));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_tabs);
    layout->addWidget(m_stack, 1);
    connect(m_tabs, &QTabBar::currentChanged, this, [this](int index) {
        m_stack->setCurrentIndex(index);
        Page& shown = m_pages[static_cast<std::size_t>(index)];
        if (shown.model->contents().root().failed) {
            shown.model->retry({});
            shown.model->fetchMore({});
        }
        TellSelection();
    });
}

CTables::~CTables() = default;

CTables::Page CTables::MakePage(NavigatorPage number) {
    Page made{new TreeModel(number, this), new NavigatorTree(this)};
    made.view->setObjectName(QStringLiteral("page%1").arg(static_cast<int>(number)));
    made.view->setModel(made.model);
    QMenu& collections = made.view->GetCollectionMenu();
    connect(&collections, &QMenu::aboutToShow, this, [this, &collections] {
        fillChoiceMenu(collections, collectionChoices(m_site.GetTavixDoc()), QStringLiteral("There are no collections"),
                       [this](int collection) { AddSelectedFieldToCollection(collection); });
    });
    connect(made.view->selectionModel(), &QItemSelectionModel::currentChanged, this, [this] { TellSelection(); });
    connect(made.model, &TreeModel::FetchFailed, this, [this, made](const QModelIndex& branch, const QString& text) {
        m_site.WarnSoon("The contents of the report cannot be read:\n\n" + toUtf8(text));
        // Collapsed later, because the view is about to expand it. Expanding it again reads it again.
        QMetaObject::invokeMethod(
            made.view,
            [made, at = QPersistentModelIndex(branch)] {
                if (!at.isValid())
                    return;
                made.view->collapse(at);
                made.model->retry(at);
            },
            Qt::QueuedConnection);
    });
    return made;
}

NavigatorPage CTables::GetPage() const {
    return static_cast<NavigatorPage>(m_tabs->currentIndex());
}

bool CTables::IsPageEmpty() const {
    const TreeModel& shown = *m_pages[static_cast<std::size_t>(GetPage())].model;
    return shown.rowCount() == 0 && !shown.canFetchMore({});
}

int CTables::GetDataSource() const {
    const Page& tables = m_pages[static_cast<std::size_t>(NavigatorPage::Tables)];
    const TreeNode* node = tables.model->node(tables.view->currentIndex());
    while (node && node->kind != TreeNodeKind::DataSource)
        node = node->parent;
    return node ? node->id : -1;
}

void CTables::ShowPage(NavigatorPage number) {
    m_tabs->setCurrentIndex(static_cast<int>(number));
}

void CTables::SetInternalFocus() {
    GetPageControl()->setFocus(Qt::TabFocusReason);
}

QWidget* CTables::GetPageControl() const {
    return m_stack->currentWidget();
}

void CTables::Refresh(CRefreshItem*, RefreshHint hint, int) {
    m_information.Forget();
    switch (hint) {
    case RefreshHint::HistoryDeleted:
    case RefreshHint::AlertsChanged:
        ShowAlerts();
        return;
    case RefreshHint::CollectionsRefreshed:
        Reload(page(NavigatorPage::Collections));
        break;
    case RefreshHint::DocumentReset:
    case RefreshHint::RunLoaded:
        for (Page& each : m_pages)
            Reload(each);
        ShowAlerts();
        break;
    default:
        return;
    }
    TellSelection();
}

void CTables::ShowAlerts() {
    Page& tables = page(NavigatorPage::Tables);
    tables.model->setAlerts(AlertDots(m_site.GetTavixDoc().GetAlerts()));
    tables.view->viewport()->update();
}

CTables::PageState CTables::StateOf(Page& each) const {
    PageState state;
    if (const TreeNode* node = each.model->node(each.view->currentIndex()))
        state.selected = TreeContents::pathOf(*node);
    collectExpanded(*each.view, *each.model, {}, state.expanded);
    return state;
}

void CTables::Reload(Page& each) {
    m_reloading = true;
    const PageState state = StateOf(each);
    each.model->reset(m_site.GetTavixDoc().GetViewer());
    if (each.model->canFetchMore({}))
        each.model->fetchMore({});
    for (const TreePath& path : state.expanded)
        each.view->expand(each.model->find(path));
    if (state.expanded.empty())
        OpenTopLevel(each);
    TreePath wanted = state.selected;
    QModelIndex index;
    // If the object is gone, its nearest remaining ancestor is selected.
    while (!wanted.empty() && !(index = each.model->find(wanted)).isValid())
        wanted.pop_back();
    if (index.isValid()) {
        each.view->setCurrentIndex(index);
        each.view->scrollTo(index);
    }
    m_reloading = false;
}

// A single data source is expanded, so that its tables are visible.
void CTables::OpenTopLevel(Page& each) {
    for (QModelIndex at; each.model->rowCount(at) == 1 && each.model->contents().page() == NavigatorPage::Tables;) {
        at = each.model->index(0, 0, at);
        if (each.model->node(at)->kind == TreeNodeKind::Table)
            break;
        each.view->expand(at);
    }
}

void CTables::TellSelection() {
    if (m_reloading)
        return;
    Page& shown = page(GetPage());
    const TreeNode* node = shown.model->node(shown.view->currentIndex());
    m_site.SelectionChanged(GetPage(), node ? selectionOf(*node) : ReportSelection());
}

bool CTables::SelectNode(Page& each, const TreeNode* node) {
    const QModelIndex index = each.model->indexOf(node);
    if (!index.isValid())
        return false;
    each.view->setCurrentIndex(index);
    each.view->scrollTo(index);
    return true;
}

bool CTables::SelectTable(const std::string& dataSource, const std::string& qualifier1, const std::string& qualifier2,
                          const std::string& table, int mode) {
    ShowPage(NavigatorPage::Tables);
    Page& tables = page(NavigatorPage::Tables);
    tables.view->setCurrentIndex({});
    return SelectNode(tables, tables.model->contents().FindTable(dataSource, qualifier1, qualifier2, table, mode));
}

bool CTables::SelectObject(const ReportSelection& object) {
    const bool isTable = object.kind == ReportSelection::Kind::Table;
    const NavigatorPage number = isTable ? NavigatorPage::Tables : NavigatorPage::Collections;
    const TreeNode* node = page(number).model->contents().FindObject(object);
    if (!node)
        return false;
    ShowPage(number);
    return SelectNode(page(number), node);
}

bool CTables::SelectField(int fieldId) {
    Page& shown = page(GetPage());
    const auto isField = [](const TreeNode& node) {
        return node.kind == TreeNodeKind::Field || node.kind == TreeNodeKind::CollectionField;
    };
    TreeNode* owner = shown.model->node(shown.view->currentIndex());
    if (owner && isField(*owner))
        owner = owner->parent;
    if (!owner || selectionOf(*owner).kind == ReportSelection::Kind::Nothing)
        return false;
    const QModelIndex parent = shown.model->indexOf(owner);
    if (shown.model->canFetchMore(parent))
        shown.model->fetchMore(parent);
    for (const std::unique_ptr<TreeNode>& child : owner->children) {
        if (isField(*child) && child->id == fieldId)
            return SelectNode(shown, child.get());
    }
    return false;
}

std::string CTables::GetInformationText(const ReportSelection& selection) {
    PrViewer* viewer = m_site.GetTavixDoc().GetViewer();
    if (!viewer)
        return {};
    const Result<std::string> text = m_information.TextOf(*viewer, selection);
    return text ? *text : std::string();
}

void CTables::SelectSomething() {
    Page& shown = page(GetPage());
    // A tree that receives the focus makes its first node current; this is not a choice of the user.
    const TreeNode* current = shown.model->node(shown.view->currentIndex());
    if (current && selectionOf(*current).kind != ReportSelection::Kind::Nothing)
        return;
    if (GetPage() == NavigatorPage::Tables)
        SelectNode(shown, shown.model->contents().FindFirstTable());
}

int CTables::AddSelectedFieldToCollection(int collectionId) {
    const Page& shown = page(GetPage());
    const TreeNode* node = shown.model->node(shown.view->currentIndex());
    const int fieldId = node ? selectionOf(*node).fieldId : -1;
    return fieldId == -1 ? 0 : addFieldsToCollection(m_site.GetTavixDoc(), collectionId, {&fieldId, 1});
}

bool CTables::RefreshCollections() {
    CTavixDoc& document = m_site.GetTavixDoc();
    PrViewer* viewer = document.GetViewer();
    if (!viewer)
        return false;
    const std::unique_ptr<Messages::Busy> busy = document.GetMessages().busy();
    if (const Status refreshed = refreshCollectionsOfAllTables(*viewer); !refreshed) {
        document.GetMessages().warn("Unable to refresh collections:\n\n" + refreshed.error().text);
        return false;
    }
    document.CollectionsRefreshed();
    return true;
}

} // namespace tavix
