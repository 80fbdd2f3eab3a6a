#pragma once

#include "nav/TreeContents.h"

#include <QAbstractItemModel>

namespace tavix {

/// A page of the navigator as a Qt model: nodes are fetched when the view opens them.
class TreeModel final : public QAbstractItemModel {
    Q_OBJECT
  public:
    enum Role {
        CountTextRole = Qt::UserRole, ///< what a node tells beside its name, as text
        IconRole,                     ///< a CellIcon, as int
    };

    explicit TreeModel(NavigatorPage page, QObject* parent = nullptr);

    /// Forgets all nodes; `viewer` may be null.
    void reset(PrViewer* viewer);
    [[nodiscard]] TreeContents& contents() { return m_contents; }
    /// Lets a branch whose contents could not be read be fetched again.
    void retry(const QModelIndex& index);
    /// Null for an index outside the tree.
    [[nodiscard]] TreeNode* node(const QModelIndex& index) const;
    /// Invalid for null and for the root. Fetches nothing; the nodes above must have been fetched through the model.
    [[nodiscard]] QModelIndex indexOf(const TreeNode* node) const;
    /// Fetches its way down to the node, telling the views; invalid when there is no such node any more.
    [[nodiscard]] QModelIndex find(const TreePath& path);

    [[nodiscard]] QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    [[nodiscard]] QModelIndex parent(const QModelIndex& child) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool hasChildren(const QModelIndex& parent = {}) const override;
    [[nodiscard]] bool canFetchMore(const QModelIndex& parent) const override;
    void fetchMore(const QModelIndex& parent) override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

  Q_SIGNALS:
    void FetchFailed(const QModelIndex& branch, const QString& errorText);

  private:
    TreeNode& nodeAt(const QModelIndex& index) const;

    mutable TreeContents m_contents;
};

} // namespace tavix
