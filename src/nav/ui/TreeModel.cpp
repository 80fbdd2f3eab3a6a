#include "nav/ui/TreeModel.h"

#include "base/ui/QtText.h"
#include "grid/CUGDataSource.h"
#include "nav/InformationText.h"
#include "report/AlertMarks.h"
#include "report/AlertTexts.h"

namespace tavix {

namespace {

CellIcon iconOf(const TreeNode& node) {
    switch (node.kind) {
    case TreeNodeKind::DataSource:
        return CellIcon::Source;
    case TreeNodeKind::Catalog:
        return CellIcon::Catalog;
    case TreeNodeKind::Schema:
        return CellIcon::Schema;
    case TreeNodeKind::Table:
        return node.table.kind == TableKind::Query    ? CellIcon::QueryTable
               : node.table.kind == TableKind::Filter ? CellIcon::FilterTable
                                                      : CellIcon::Table;
    case TreeNodeKind::Field:
    case TreeNodeKind::CollectionField:
        return CellIcon::Field;
    case TreeNodeKind::Collection:
        return CellIcon::Collection;
    case TreeNodeKind::Analysis:
        return CellIcon::Redundancy;
    case TreeNodeKind::Root:
        break;
    }
    return CellIcon::None;
}

} // namespace

TreeModel::TreeModel(NavigatorPage page, QObject* parent) : QAbstractItemModel(parent), m_contents(page) {
    m_contents.SetOpener([this](TreeNode& node) { fetchMore(indexOf(&node)); });
}

void TreeModel::reset(PrViewer* viewer) {
    beginResetModel();
    m_contents.Reset(viewer);
    endResetModel();
}

void TreeModel::retry(const QModelIndex& index) {
    TreeContents::Retry(nodeAt(index));
}

TreeNode& TreeModel::nodeAt(const QModelIndex& index) const {
    return index.isValid() ? *static_cast<TreeNode*>(index.internalPointer()) : m_contents.root();
}

TreeNode* TreeModel::node(const QModelIndex& index) const {
    return index.isValid() ? static_cast<TreeNode*>(index.internalPointer()) : nullptr;
}

QModelIndex TreeModel::indexOf(const TreeNode* node) const {
    if (!node || !node->parent)
        return {};
    return createIndex(node->row, 0, node);
}

QModelIndex TreeModel::find(const TreePath& path) {
    return indexOf(m_contents.Find(path));
}

QModelIndex TreeModel::index(int row, int column, const QModelIndex& parent) const {
    if (column != 0 || row < 0 || row >= rowCount(parent))
        return {};
    return createIndex(row, 0, nodeAt(parent).children[static_cast<std::size_t>(row)].get());
}

QModelIndex TreeModel::parent(const QModelIndex& child) const {
    return child.isValid() ? indexOf(nodeAt(child).parent) : QModelIndex();
}

int TreeModel::rowCount(const QModelIndex& parent) const {
    return static_cast<int>(nodeAt(parent).children.size());
}

int TreeModel::columnCount(const QModelIndex&) const {
    return 1;
}

bool TreeModel::hasChildren(const QModelIndex& parent) const {
    const TreeNode& node = nodeAt(parent);
    return node.fetched && !node.failed ? !node.children.empty() : node.mayHaveChildren;
}

bool TreeModel::canFetchMore(const QModelIndex& parent) const {
    return !nodeAt(parent).fetched;
}

void TreeModel::fetchMore(const QModelIndex& parent) {
    TreeNode& node = nodeAt(parent);
    if (node.fetched)
        return;
    // The number of rows is known only after the query, but views must be notified before the rows exist.
    const bool done = m_contents.Fetch(node);
    auto children = std::move(node.children);
    node.children.clear();
    if (!children.empty()) {
        beginInsertRows(parent, 0, static_cast<int>(children.size()) - 1);
        node.children = std::move(children);
        endInsertRows();
    }
    if (!done)
        Q_EMIT FetchFailed(parent, toQString(m_contents.GetErrorText()));
}

QVariant TreeModel::data(const QModelIndex& index, int role) const {
    const TreeNode* node = this->node(index);
    if (!node)
        return {};
    const auto alertText = [this, node](const std::string& before) {
        const AlertCounts& counts = m_alerts.Of(*node);
        return counts.raised() > 0 ? before + "Alerts raised: " + alertCountsText(counts) : std::string();
    };
    switch (role) {
    case Qt::DisplayRole:
        return toQString(node->name);
    case CountTextRole:
        return toQString(countText(*node));
    case Qt::AccessibleTextRole:
        return toQString(node->name + " " + countText(*node) + alertText(", "));
    case IconRole:
        return static_cast<int>(iconOf(*node));
    case Qt::ToolTipRole:
        if (node->kind == TreeNodeKind::Table)
            return toQString(informationText(node->table)).trimmed() + toQString(alertText("\n"));
        return toQString(node->name + alertText("\n"));
    case AlertRole:
        return static_cast<int>(markOf(m_alerts.Of(*node)));
    default:
        return {};
    }
}

} // namespace tavix
