#pragma once

#include "nav/AlertDots.h"
#include "nav/TreeContents.h"

#include <QAbstractItemModel>

#include <utility>

namespace tavix {

/// A page of the navigator as a Qt model: nodes are fetched when the view opens them.
class TreeModel final : public QAbstractItemModel {
    Q_OBJECT
  public:
    enum Role {
        CountTextRole = Qt::UserRole, ///< the count beside the name, as text
        IconRole,                     ///< a CellIcon, as int
        AlertRole,                    ///< of the raised alerts on the table or field: an AlertMark, as int
    };

    explicit TreeModel(NavigatorPage page, QObject* parent = nullptr);

    /// Removes all nodes; `viewer` may be null.
    void reset(PrViewer* viewer);
    [[nodiscard]] TreeContents& contents() { return m_contents; }
    /// Shows which alerts are raised on tables and fields; those of a table and of its fields count for the table.
    void setAlerts(AlertDots alerts) { m_alerts = std::move(alerts); }
    /// Allows a branch that could not be read to be fetched again.
    void retry(const QModelIndex& index);
    /// Null for an index outside the tree.
    [[nodiscard]] TreeNode* node(const QModelIndex& index) const;
    /// Invalid for null and for the root. Fetches nothing; the ancestors must have been fetched through the model.
    [[nodiscard]] QModelIndex indexOf(const TreeNode* node) const;
    /// Fetches all nodes down to this one and notifies the views; invalid when the node does not exist any more.
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
    AlertDots m_alerts;
};

} // namespace tavix
