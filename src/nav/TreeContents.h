#pragma once

#include "report/ReportSelection.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace tavix {

class PrViewer;
class ProfileCursor;

enum class TreeNodeKind { Root, DataSource, Catalog, Schema, Table, Field, Collection, CollectionField, Analysis };

/// What names a node among its siblings, in every run.
struct TreeNodeKey {
    TreeNodeKind kind = TreeNodeKind::Root;
    int id = -1;      ///< in the repository; -1 for catalogs and schemas
    std::string name; ///< of catalogs and schemas; else ""

    bool operator==(const TreeNodeKey&) const = default;
};

/// The way from the top level down to a node.
using TreePath = std::vector<TreeNodeKey>;

struct TreeNode {
    TreeNodeKind kind = TreeNodeKind::Root;
    int id = -1;
    std::string name;        ///< as shown
    std::int64_t count = -1; ///< what the node tells beside its name, see countText(); -1 for nothing
    int sourceKind = -1;     ///< of a data source: how it is reached, 0 ODBC, 4 files
    std::string typeCode;    ///< of a field
    std::string origin;      ///< of a collection's field: where it comes from
    TableIdentity table;     ///< of a table

    TreeNode* parent = nullptr;
    int row = 0; ///< among the parent's children
    bool mayHaveChildren = false;
    bool fetched = false;
    bool failed = false; ///< fetched in vain
    std::vector<std::unique_ptr<TreeNode>> children;

    [[nodiscard]] TreeNodeKey key() const;
};

/// The tree of one page of the navigator. Nodes are fetched when they are asked for, the children of a node with one
/// query.
class TreeContents {
  public:
    explicit TreeContents(NavigatorPage page);

    /// Forgets all nodes; `viewer` is asked from now on, or nothing when it is null. Must outlive the contents or the
    /// next Reset.
    void Reset(PrViewer* viewer);

    [[nodiscard]] NavigatorPage page() const { return m_page; }
    /// Stands above the top level and is not shown.
    [[nodiscard]] TreeNode& root() { return *m_root; }
    /// Fetches the children of `node` unless they are there. False when the repository fails; GetErrorText() then says
    /// why, and the node counts as fetched and empty.
    bool Fetch(TreeNode& node);
    /// Lets a node that was fetched in vain be fetched again.
    static void Retry(TreeNode& node) { node.fetched = node.fetched && !std::exchange(node.failed, false); }
    [[nodiscard]] const std::string& GetErrorText() const { return m_error; }

    /// The searches below call this in place of Fetch, so that a model can tell its views of the nodes that come.
    void SetOpener(std::function<void(TreeNode&)> opener) { m_opener = std::move(opener); }

    [[nodiscard]] static TreePath pathOf(const TreeNode& node);
    /// Fetches its way down; null when there is no such node any more.
    [[nodiscard]] TreeNode* Find(const TreePath& path);
    /// The first table in the order of the tree; null without one.
    [[nodiscard]] TreeNode* FindFirstTable();
    /// The table of that name: exact, case-sensitive comparisons; a qualifier names a catalog and a schema. Null when
    /// there is none. `mode` is the kind of the data source.
    [[nodiscard]] TreeNode* FindTable(const std::string& dataSource, const std::string& qualifier1,
                                      const std::string& qualifier2, const std::string& table, int mode);
    /// The table or collection; null when there is none of that id.
    [[nodiscard]] TreeNode* FindObject(const ReportSelection& object);
    /// The next node that is wanted in the order of the tree, among those that are fetched: from `from` on, or behind
    /// it with `skipFirst`, once around the whole tree. Null when there is none. From the top for a null `from`.
    [[nodiscard]] TreeNode* FindLoaded(const TreeNode* from, bool skipFirst,
                                       const std::function<bool(const TreeNode&)>& wanted) const;

  private:
    void Open(TreeNode& node);
    bool FetchDataSources(TreeNode& node);
    bool FetchTables(TreeNode& node);
    bool FetchFields(TreeNode& node);
    bool FetchCollections(TreeNode& node);
    bool FetchCollectionFields(TreeNode& node);
    bool FetchAnalyses(TreeNode& node);
    TreeNode* FindFirstTable(TreeNode& node);
    TreeNode* FindById(TreeNode& node, TreeNodeKind kind, int id);
    TreeNode* FindTableBelow(TreeNode& node, const std::string& qualifier1, const std::string& qualifier2,
                             const std::string& table);

    NavigatorPage m_page;
    PrViewer* m_viewer = nullptr;
    std::unique_ptr<TreeNode> m_root;
    std::function<void(TreeNode&)> m_opener;
    std::string m_error;
};

/// What the node tells beside its name: "3,376", "10 fields", a field's type; "" for nothing.
[[nodiscard]] std::string countText(const TreeNode& node);
/// What is selected when this node is.
[[nodiscard]] ReportSelection selectionOf(const TreeNode& node);

} // namespace tavix
