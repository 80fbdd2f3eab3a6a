#pragma once

#include <QElapsedTimer>
#include <QTreeView>

class QAction;
class QMenu;

namespace tavix {

class TreeModel;

/// The tree of one page of the navigator. Typing finds a name among the loaded nodes, even in collapsed branches;
/// Ctrl+C copies the name of the current node. The context menu can also add a field to a collection.
class NavigatorTree final : public QTreeView {
    Q_OBJECT
  public:
    explicit NavigatorTree(QWidget* parent = nullptr);

    void keyboardSearch(const QString& typed) override;
    /// The submenu for fields; its owner fills it on aboutToShow.
    [[nodiscard]] QMenu& GetCollectionMenu() { return *m_collectionMenu; }
    void CopyName() const;

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    /// Without the focus, the selection is paler.
    void initViewItemOption(QStyleOptionViewItem* option) const override;

  private:
    [[nodiscard]] TreeModel* Model() const;

    QMenu* m_collectionMenu;
    QAction* m_copy;
    QString m_typed;
    QElapsedTimer m_sinceTyped;
};

} // namespace tavix
