#include "nav/TreeContents.h"

#include "access/CursorText.h"
#include "access/Layouts.h"
#include "access/PrViewer.h"
#include "base/GenException.h"
#include "base/NumberText.h"
#include "base/TypeWords.h"
#include "report/CountText.h"
#include "report/ReportTables.h"

namespace tavix {

namespace {

TreeNode& append(TreeNode& parent, TreeNodeKind kind, int id, std::string name) {
    auto node = std::make_unique<TreeNode>();
    node->kind = kind;
    node->id = id;
    node->name = std::move(name);
    node->parent = &parent;
    node->row = static_cast<int>(parent.children.size());
    parent.children.push_back(std::move(node));
    return *parent.children.back();
}

// The node for a catalog or schema below `parent`; `parent` itself when the table has none.
TreeNode& enter(TreeNode& parent, TreeNodeKind kind, const std::string& name) {
    if (name.empty())
        return parent;
    // Search backwards: tables of one schema are usually adjacent.
    for (auto child = parent.children.rbegin(); child != parent.children.rend(); ++child) {
        if ((*child)->kind == kind && (*child)->name == name)
            return **child;
    }
    TreeNode& node = append(parent, kind, -1, name);
    node.mayHaveChildren = true;
    node.fetched = true;
    return node;
}

// The next node in preorder: the first child, else the next sibling of the node or of an ancestor; null after the last.
const TreeNode* nextLoaded(const TreeNode* node) {
    if (!node->children.empty())
        return node->children.front().get();
    for (; node->parent; node = node->parent) {
        const auto beside = static_cast<std::size_t>(node->row) + 1;
        if (beside < node->parent->children.size())
            return node->parent->children[beside].get();
    }
    return nullptr;
}

} // namespace

TreeNodeKey TreeNode::key() const {
    const bool named = kind == TreeNodeKind::Catalog || kind == TreeNodeKind::Schema;
    return {kind, id, named ? name : std::string()};
}

TreeContents::TreeContents(NavigatorPage page) : m_page(page) {
    Reset(nullptr);
}

void TreeContents::Reset(PrViewer* viewer) {
    m_viewer = viewer;
    m_root = std::make_unique<TreeNode>();
    m_root->mayHaveChildren = viewer != nullptr;
    m_root->fetched = viewer == nullptr;
}

bool TreeContents::Fetch(TreeNode& node) {
    if (node.fetched)
        return true;
    node.fetched = true;
    bool done = false;
    try {
        switch (node.kind) {
        case TreeNodeKind::Root:
            done = m_page == NavigatorPage::Tables        ? FetchDataSources(node)
                   : m_page == NavigatorPage::Collections ? FetchCollections(node)
                                                          : FetchAnalyses(node);
            break;
        case TreeNodeKind::DataSource:
            done = FetchTables(node);
            break;
        case TreeNodeKind::Table:
            done = FetchFields(node);
            break;
        case TreeNodeKind::Collection:
            done = FetchCollectionFields(node);
            break;
        default:
            return true;
        }
        if (!done)
            m_error = m_viewer->getErrorString().str();
    } catch (const GenException& exception) {
        m_error = exception.getText().str();
        done = false;
    }
    if (!done)
        node.children.clear();
    node.failed = !done;
    return done;
}

bool TreeContents::FetchDataSources(TreeNode& node) {
    const ProfileCursorHandle cursor = m_viewer->getDSNList();
    if (!cursor)
        return false;
    while (cursor->next()) {
        TreeNode& source = append(node, TreeNodeKind::DataSource, cursor->getColumnInt(layout::DsnId),
                                  textAt(*cursor, layout::DsnName));
        source.sourceKind = cursor->getColumnInt(layout::DsnKind);
        source.count = int64Or(*cursor, layout::DsnTables, -1);
        source.mayHaveChildren = source.count != 0;
    }
    return true;
}

bool TreeContents::FetchTables(TreeNode& node) {
    for (TableIdentity& identity : readTables(*m_viewer, node.id, node.name)) {
        TreeNode& catalog = enter(node, TreeNodeKind::Catalog, identity.catalog);
        TreeNode& schema = enter(catalog, TreeNodeKind::Schema, identity.schema);
        TreeNode& table = append(schema, TreeNodeKind::Table, identity.id, identity.displayName());
        // The total of a filtered table is that of its base table.
        const bool isFiltered = identity.kind == TableKind::Filter && identity.processedRecords >= 0;
        table.count = isFiltered ? identity.processedRecords : identity.totalRecords;
        table.mayHaveChildren = identity.fields != 0;
        table.table = std::move(identity);
    }
    return true;
}

bool TreeContents::FetchFields(TreeNode& node) {
    for (NamedField& named : readFieldNames(*m_viewer, node.id)) {
        TreeNode& field = append(node, TreeNodeKind::Field, named.id, std::move(named.name));
        field.typeCode = std::move(named.typeCode);
    }
    return true;
}

bool TreeContents::FetchCollections(TreeNode& node) {
    const ProfileCursorHandle cursor = m_viewer->getGlobalCollections();
    if (!cursor)
        return false;
    while (cursor->next()) {
        TreeNode& collection = append(node, TreeNodeKind::Collection, cursor->getColumnInt(layout::CollectionId),
                                      textAt(*cursor, layout::CollectionName));
        collection.count = int64Or(*cursor, layout::CollectionFields, -1);
        collection.mayHaveChildren = collection.count != 0;
    }
    return true;
}

bool TreeContents::FetchCollectionFields(TreeNode& node) {
    const ProfileCursorHandle cursor = m_viewer->getGlobalCollFieldList(node.id);
    if (!cursor)
        return false;
    while (cursor->next()) {
        TreeNode& field = append(node, TreeNodeKind::CollectionField, cursor->getColumnInt(layout::FieldId),
                                 textAt(*cursor, layout::FieldName));
        const std::string object = textAt(*cursor, layout::SourceObject);
        field.origin = object.empty() ? textAt(*cursor, layout::SourceTable) : object;
    }
    return true;
}

bool TreeContents::FetchAnalyses(TreeNode& node) {
    const ProfileCursorHandle cursor = m_viewer->getRdaCfgs();
    if (!cursor)
        return false;
    while (cursor->next()) {
        TreeNode& analysis =
            append(node, TreeNodeKind::Analysis, cursor->getColumnInt(layout::RdaId), textAt(*cursor, layout::RdaName));
        analysis.count = int64Or(*cursor, layout::RdaFields, -1);
    }
    return true;
}

void TreeContents::Open(TreeNode& node) {
    if (m_opener)
        m_opener(node);
    else
        Fetch(node);
}

TreePath TreeContents::pathOf(const TreeNode& node) {
    TreePath path;
    for (const TreeNode* at = &node; at->parent; at = at->parent)
        path.insert(path.begin(), at->key());
    return path;
}

TreeNode* TreeContents::Find(const TreePath& path) {
    TreeNode* node = m_root.get();
    for (const TreeNodeKey& key : path) {
        Open(*node);
        TreeNode* next = nullptr;
        for (const auto& child : node->children) {
            if (child->key() == key) {
                next = child.get();
                break;
            }
        }
        if (!next)
            return nullptr;
        node = next;
    }
    return node;
}

TreeNode* TreeContents::FindFirstTable() {
    return FindFirstTable(*m_root);
}

TreeNode* TreeContents::FindFirstTable(TreeNode& node) {
    Open(node);
    for (const auto& child : node.children) {
        if (child->kind == TreeNodeKind::Table)
            return child.get();
        if (TreeNode* table = FindFirstTable(*child))
            return table;
    }
    return nullptr;
}

TreeNode* TreeContents::FindTable(const std::string& dataSource, const std::string& qualifier1,
                                  const std::string& qualifier2, const std::string& table, int mode) {
    Retry(*m_root);
    Open(*m_root);
    for (const auto& source : m_root->children) {
        if (source->name == dataSource && source->sourceKind == mode)
            return FindTableBelow(*source, qualifier1, qualifier2, table);
    }
    return nullptr;
}

TreeNode* TreeContents::FindTableBelow(TreeNode& node, const std::string& qualifier1, const std::string& qualifier2,
                                       const std::string& table) {
    Retry(node);
    Open(node);
    for (const auto& child : node.children) {
        const bool entered = (child->kind == TreeNodeKind::Catalog && child->name == qualifier1) ||
                             (child->kind == TreeNodeKind::Schema && child->name == qualifier2);
        if (entered) {
            if (TreeNode* found = FindTableBelow(*child, qualifier1, qualifier2, table))
                return found;
        }
        if (child->kind == TreeNodeKind::Table && child->name == table)
            return child.get();
    }
    return nullptr;
}

TreeNode* TreeContents::FindObject(const ReportSelection& object) {
    if (object.kind == ReportSelection::Kind::Table)
        return FindById(*m_root, TreeNodeKind::Table, object.table.id);
    return object.kind == ReportSelection::Kind::Collection ? FindById(*m_root, TreeNodeKind::Collection, object.id)
                                                            : nullptr;
}

TreeNode* TreeContents::FindById(TreeNode& node, TreeNodeKind kind, int id) {
    Open(node);
    for (const auto& child : node.children) {
        if (child->kind == kind && child->id == id)
            return child.get();
        // Only fields lie below these.
        if (child->kind == TreeNodeKind::Table || child->kind == TreeNodeKind::Collection)
            continue;
        if (TreeNode* found = FindById(*child, kind, id))
            return found;
    }
    return nullptr;
}

TreeNode* TreeContents::FindLoaded(const TreeNode* from, bool skipFirst,
                                   const std::function<bool(const TreeNode&)>& wanted) const {
    const TreeNode* const start = from ? from : m_root.get();
    const TreeNode* at = start;
    if (skipFirst || at == m_root.get())
        at = nextLoaded(at);
    // The search passes the root, which never matches, when it wraps around.
    for (bool around = false;; at = nextLoaded(at)) {
        if (!at) {
            if (around)
                return nullptr;
            around = true;
            at = m_root.get();
        } else if (at != m_root.get() && wanted(*at)) {
            return const_cast<TreeNode*>(at);
        }
        if (around && at == start)
            return nullptr;
    }
}

std::string countText(const TreeNode& node) {
    switch (node.kind) {
    case TreeNodeKind::Table:
        return node.count < 0 ? std::string() : groupedCount(node.count);
    case TreeNodeKind::DataSource:
        return node.count < 0 ? std::string() : countOf(node.count, "table");
    case TreeNodeKind::Collection:
    case TreeNodeKind::Analysis:
        return node.count < 0 ? std::string() : countOf(node.count, "field");
    case TreeNodeKind::Field:
        return std::string(typeWord(node.typeCode));
    case TreeNodeKind::CollectionField:
        return node.origin;
    default:
        return {};
    }
}

ReportSelection selectionOf(const TreeNode& node) {
    ReportSelection selection;
    const TreeNode* owner = &node;
    if (node.kind == TreeNodeKind::Field || node.kind == TreeNodeKind::CollectionField) {
        selection.fieldId = node.id;
        selection.fieldName = node.name;
        owner = node.parent;
    }
    switch (owner->kind) {
    case TreeNodeKind::Table:
        selection.kind = ReportSelection::Kind::Table;
        selection.table = owner->table;
        break;
    case TreeNodeKind::Collection:
    case TreeNodeKind::Analysis:
        selection.kind = owner->kind == TreeNodeKind::Collection ? ReportSelection::Kind::Collection
                                                                 : ReportSelection::Kind::Analysis;
        selection.id = owner->id;
        selection.name = owner->name;
        break;
    default:
        break;
    }
    return selection;
}

} // namespace tavix
