#include "nav/ui/NavigatorTree.h"

#include "base/ui/NestedLoop.h"
#include "base/ui/QtText.h"
#include "base/ui/Theme.h"
#include "nav/ui/TreeDelegate.h"
#include "nav/ui/TreeModel.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>

namespace tavix {

NavigatorTree::NavigatorTree(QWidget* parent)
    : QTreeView(parent),
      m_collectionMenu(new QMenu(QStringLiteral("&Add to Collection"), this)),
      m_copy(new QAction(QStringLiteral("&Copy Name"), this)) {
    setItemDelegate(new TreeDelegate(this));
    setHeaderHidden(true);
    setUniformRowHeights(true);
    setFrameShape(QFrame::NoFrame);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setIndentation(18);
    m_copy->setShortcut(QKeySequence::Copy);
    m_copy->setShortcutContext(Qt::WidgetShortcut);
    connect(m_copy, &QAction::triggered, this, &NavigatorTree::CopyName);
    addAction(m_copy);
}

TreeModel* NavigatorTree::Model() const {
    return static_cast<TreeModel*>(model());
}

void NavigatorTree::CopyName() const {
    if (const TreeNode* node = Model()->node(currentIndex()))
        QApplication::clipboard()->setText(toQString(node->name));
}

void NavigatorTree::keyPressEvent(QKeyEvent* event) {
    const bool isPage = event->key() == Qt::Key_PageDown || event->key() == Qt::Key_PageUp;
    // Ctrl+PageUp and Ctrl+PageDown step through the tabs of the report.
    if (isPage && event->modifiers().testFlag(Qt::ControlModifier))
        event->ignore();
    else
        QTreeView::keyPressEvent(event);
}

void NavigatorTree::contextMenuEvent(QContextMenuEvent* event) {
    QPoint at = event->globalPos();
    if (event->reason() == QContextMenuEvent::Keyboard)
        at = viewport()->mapToGlobal(visualRect(currentIndex()).bottomLeft());
    const TreeNode* node = Model()->node(currentIndex());
    if (!node)
        return;
    QMenu menu(this);
    if (node->kind == TreeNodeKind::Field || node->kind == TreeNodeKind::CollectionField)
        menu.addMenu(m_collectionMenu);
    menu.addAction(m_copy);
    const NestedLoop loop(NestedLoop::Kind::Other);
    menu.exec(at);
}

void NavigatorTree::initViewItemOption(QStyleOptionViewItem* option) const {
    QTreeView::initViewItemOption(option);
    if (!hasFocus())
        option->palette = withPaleSelection(option->palette);
}

void NavigatorTree::keyboardSearch(const QString& typed) {
    if (typed.isEmpty())
        return;
    const bool goesOn = m_sinceTyped.isValid() && m_sinceTyped.elapsed() < QApplication::keyboardInputInterval();
    m_sinceTyped.start();
    m_typed = goesOn ? m_typed + typed : typed;
    // Repeating a letter steps through the names that start with it.
    const bool repeated = m_typed.count(m_typed.at(0), Qt::CaseInsensitive) == m_typed.size();
    const QString wanted = repeated ? m_typed.left(1) : m_typed;
    const TreeNode* from = Model()->node(currentIndex());
    TreeNode* found = Model()->contents().FindLoaded(from, repeated, [&wanted](const TreeNode& node) {
        return toQString(node.name).startsWith(wanted, Qt::CaseInsensitive);
    });
    if (!found)
        return;
    const QModelIndex index = Model()->indexOf(found);
    setCurrentIndex(index);
    scrollTo(index);
}

} // namespace tavix
