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

/// Identifies a node among its siblings, across runs.
struct TreeNodeKey {
    TreeNodeKind kind = TreeNodeKind::Root;
    int id = -1;      ///< in the repository; -1 for catalogs and schemas
    std::string name; ///< of catalogs and schemas; else ""

    bool operator==(const TreeNodeKey&) const = default;
};

/// The path from the top level down to a node.
using TreePath = std::vector<TreeNodeKey>;

struct TreeNode {
    TreeNodeKind kind = TreeNodeKind::Root;
    int id = -1;
    std::string name;        ///< as shown
    std::int64_t count = -1; ///< shown beside the name, see countText(); -1 for none
    int sourceKind = -1;     ///< of a data source: the number of its SourceKind
    std::string typeCode;    ///< of a field
    std::string origin;      ///< of a collection's field: its table
    TableIdentity table;     ///< of a table

    TreeNode* parent = nullptr;
    int row = 0; ///< among the parent's children
    bool mayHaveChildren = false;
    bool fetched = false;
    bool failed = false; ///< the last fetch failed
    std::vector<std::unique_ptr<TreeNode>> children;

    [[nodiscard]] TreeNodeKey key() const;
};

/// The tree of one page of the navigator. The children of a node are fetched on demand, with one query.
class TreeContents {
  public:
    explicit TreeContents(NavigatorPage page);

    /// Drops all nodes and reads from `viewer` from now on; the tree is empty when it is null. The viewer must outlive
    /// the contents or the next Reset.
    void Reset(PrViewer* viewer);

    [[nodiscard]] NavigatorPage page() const { return m_page; }
    /// The parent of the top level. It is not shown.
    [[nodiscard]] TreeNode& root() { return *m_root; }
    /// Fetches the children of `node` unless they were fetched before. When the repository fails, returns false, sets
    /// GetErrorText() and leaves the node fetched and empty.
    bool Fetch(TreeNode& node);
    /// Allows a node to be fetched again after a failure.
    static void Retry(TreeNode& node) { node.fetched = node.fetched && !std::exchange(node.failed, false); }
    [[nodiscard]] const std::string& GetErrorText() const { return m_error; }

    /// The searches below call `opener` instead of Fetch, so that a model can notify its views of the new nodes.
    void SetOpener(std::function<void(TreeNode&)> opener) { m_opener = std::move(opener); }

    [[nodiscard]] static TreePath pathOf(const TreeNode& node);
    /// Fetches the nodes of the path; null when one of them no longer exists.
    [[nodiscard]] TreeNode* Find(const TreePath& path);
    /// The first table of the tree; null when there is none.
    [[nodiscard]] TreeNode* FindFirstTable();
    /// The table of that name, compared exactly; null when there is none. The qualifiers name its catalog and schema,
    /// `mode` is the kind of the data source.
    [[nodiscard]] TreeNode* FindTable(const std::string& dataSource, const std::string& qualifier1,
                                      const std::string& qualifier2, const std::string& table, int mode);
    /// The node of the table or collection with that id; null when there is none.
    [[nodiscard]] TreeNode* FindObject(const ReportSelection& object);
    /// The next fetched node for which `wanted` is true, in the order of the tree. The search begins at `from`, after
    /// it with `skipFirst`, and at the top for null, and wraps around once. Null when there is none.
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

/// The text beside the name of a node: "3,376", "10 fields", the type of a field; "" for none.
[[nodiscard]] std::string countText(const TreeNode& node);
/// The selection that this node stands for.
[[nodiscard]] ReportSelection selectionOf(const TreeNode& node);

} // namespace tavix
